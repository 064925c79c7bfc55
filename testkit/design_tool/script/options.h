#ifndef VESTRA_DESIGN_TOOL_OPTIONS_H
#define VESTRA_DESIGN_TOOL_OPTIONS_H

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "design_tool/script/invocation.h"

namespace vestra::design_tool {

/// The options of one command, read strictly: pairs of a name and a value, in any order, each name known and
/// given exactly once, none left out.
class Options {
 public:
  /// @param invocation must outlive the result
  /// @param names      the options the command takes, dashes included
  /// @throws ProtocolError naming the command and what is wrong with its words
  Options(const Invocation& invocation, const std::vector<std::string_view>& names);

  const Word& operator[](std::string_view name) const { return *values.at(name); }

 private:
  std::map<std::string_view, const Word*> values;
};

}  // namespace vestra::design_tool

#endif
