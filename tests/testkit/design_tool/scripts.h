#ifndef VESTRA_TESTS_DESIGN_TOOL_SCRIPTS_H
#define VESTRA_TESTS_DESIGN_TOOL_SCRIPTS_H

#include <string>

#include <gtest/gtest.h>

#include "design_tool/diagnosis/diagnostic.h"
#include "design_tool/script/script_evaluation.h"

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

/// What is wrong with the file, `LINE: MESSAGE` or `MESSAGE`; "no error" when the action throws none.
template <typename Action>
std::string errorIn(const std::string& file, Action action) {
  try {
    action();
    return "no error";
  } catch (const DiagnosedError& error) {
    const std::string text = error.what();
    EXPECT_EQ(text.rfind(file + ":", 0), 0U) << text;
    const std::size_t begin = file.size() + 1;
    return text.substr(text[begin] == ' ' ? begin + 1 : begin);
  }
}

/// What is wrong with a script.
inline std::string errorOf(const std::string& script, int mostCommands = MOST_COMMANDS,
                           int mostSeconds = MOST_SECONDS) {
  return errorIn("s.tcl", [&] { evaluateScript("s.tcl", script, mostCommands, mostSeconds); });
}

/// Every byte but those that the interpreter reads in a value.
inline std::string harmlessBytes() {
  std::string bytes;
  for (int value = 0; value < 256; ++value) {
    if (std::string("\"\\$[").find(static_cast<char>(value)) == std::string::npos) {
      bytes += static_cast<char>(value);
    }
  }
  return bytes;
}

}  // namespace vestra::design_tool

#endif
