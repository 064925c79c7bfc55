#ifndef VESTRA_DESIGN_TOOL_PROTOCOL_H
#define VESTRA_DESIGN_TOOL_PROTOCOL_H

#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "design_tool/report/report.h"
#include "design_tool/script/invocation.h"

namespace vestra::design_tool {

/// The conversation that a report script holds with the tool:
///
///     vestra_init -vestra_dir DIR                                            once, first
///     vestra_register_client -client NAME                                    any number, mixed with the next
///     vestra_add_data -client NAME -key KEY -value VALUE -context CONTEXT
///     vestra_transmit -clientid N -regid ID -xml PATH -html PATH -wdm PATH -intro TEXT    once
///     vestra_terminate                                                       once, last
///
/// Takes the calls one by one and builds the report of them.
class Protocol {
 public:
  /// The five commands.
  static const std::vector<std::string_view>& commands();

  /// @throws ProtocolError when the call comes at the wrong time or its options are wrong
  void take(const Invocation& invocation);

  /// Whether vestra_terminate has been seen.
  bool isOver() const { return stage == Stage::Terminated; }

  /// What is still to come, for a script that ends too early: the name of the command that is missing.
  std::string_view missingCommand() const;

  /// Adds a warning to the report.
  void warn(Warning warning) { report.warnings.push_back(std::move(warning)); }

  /// The report so far. The protocol is spent after this.
  Report release() { return std::move(report); }

 private:
  enum class Stage { Start, Open, Transmitted, Terminated };

  void checkTurn(const Invocation& invocation) const;
  void init(const Invocation& invocation);
  void registerClient(const Invocation& invocation);
  void addData(const Invocation& invocation);
  void transmit(const Invocation& invocation);
  void terminate(const Invocation& invocation);
  std::size_t sectionOf(const std::string& client, const std::string& context);
  void warnOfChanges(const Invocation& invocation, const Word& client, const Word& key, const Word& value,
                     const Word& context);

  Stage stage = Stage::Start;
  Report report;
  std::map<std::pair<std::string, std::string>, std::size_t> sectionPositions;
};

}  // namespace vestra::design_tool

#endif
