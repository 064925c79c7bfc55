#ifndef VESTRA_TESTS_DESIGN_TOOL_SCRIPT_TEXT_H
#define VESTRA_TESTS_DESIGN_TOOL_SCRIPT_TEXT_H

#include <string>

namespace vestra::design_tool {

/// One line of a script as the library writes it, line feed included.
inline std::string addData(const std::string& client, const std::string& key, const std::string& value,
                           const std::string& context) {
  return "vestra_add_data -client " + client + " -key " + key + " -value \"" + value + "\" -context \"" +
         context + "\"\n";
}

/// A whole script around some lines; the first of them is line 3.
inline std::string scriptAround(const std::string& lines) {
  return "vestra_init -vestra_dir /p/vestra/\n"
         "vestra_register_client -client kelvo\n" +
         lines +
         "vestra_transmit -clientid 1 -regid \"R\" -xml /p/x -html /p/h -wdm /p/w -intro \"<H3>I</H3><BR>\"\n"
         "vestra_terminate\n";
}

}  // namespace vestra::design_tool

#endif
