#ifndef VESTRA_DESIGN_TOOL_SCRIPT_PROTOCOL_H
#define VESTRA_DESIGN_TOOL_SCRIPT_PROTOCOL_H

#include <cstddef>
#include <map>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "design_tool/report/report.h"

namespace vestra::design_tool {

/// A call of one of the tool's commands, as the interpreter passed it.
struct Invocation {
  std::string command;
  std::vector<std::string> arguments;
  /// Where the command begins, counted from 1.
  std::size_t line = 0;
};

/// A call that the protocol does not allow.
class ProtocolError : public std::runtime_error {
  using std::runtime_error::runtime_error;
};

/// The commands of a report script, in their order:
///
///     vestra_init -vestra_dir DIR                                            once, first
///     vestra_register_client -client NAME                                    any number, mixed with the next
///     vestra_add_data -client NAME -key KEY -value VALUE -context CONTEXT
///     vestra_transmit -clientid N -regid ID -xml PATH -html PATH -wdm PATH -intro TEXT    once
///     vestra_terminate                                                       once, last
///
/// Builds the report from the calls.
class Protocol {
 public:
  static constexpr const char* COMMANDS[] = {"vestra_init", "vestra_register_client", "vestra_add_data",
                                             "vestra_transmit", "vestra_terminate"};

  /// @throws ProtocolError when the call is out of order or its options are wrong
  void take(const Invocation& invocation);

  /// Whether vestra_terminate has been called.
  bool isOver() const { return stage == Stage::Terminated; }

  /// The next command that has to come, for a script that ends too early.
  const char* missingCommand() const;

  /// The report so far. The protocol is spent after this.
  Report release() { return std::move(report); }

 private:
  enum class Stage { Start, Open, Transmitted, Terminated };

  std::string complaintAbout(std::string_view command) const;
  void addData(const Invocation& invocation);
  void transmit(const Invocation& invocation);

  Stage stage = Stage::Start;
  Report report;
  std::map<std::pair<std::string, std::string>, std::size_t> sectionPositions;
};

}  // namespace vestra::design_tool

#endif
