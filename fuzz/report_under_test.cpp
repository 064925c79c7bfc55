#include "report_under_test.h"

#include <algorithm>
#include <cctype>

#include "design_tool/diagnosis/diagnostic.h"
#include "design_tool/script/script_evaluation.h"
#include "expect.h"
#include "handler/vestra_handler.h"
#include "support/files.h"
#include "support/stand_in_library.h"
#include "support/temporary_directory.h"

namespace vestra_fuzz {

std::string scriptOf(const std::vector<Item>& items, const std::string& environment) {
  static const vestra_test::TemporaryDirectory directory;
  // Never unloaded: the fuzzer counts in its code too, and goes on counting.
  static auto* library = new vestra_test::StandInLibrary;
  library->describeEnvironment(environment);
  Oza::VestraHandler handler;
  handler.setProjectDirectory(directory / "project");
  for (const Item& item : items) {
    handler.addData(item.key, item.value, item.section);
  }
  expect(handler.prepareVestraData(), "the report is prepared");
  return vestra_test::readFile(directory / "project/vestra/kelvo_vestra.tcl");
}

std::optional<vestra::design_tool::Report> reportOf(const std::string& script) {
  vestra::design_tool::Limits limits;
  limits.commands = 100'000;
  limits.time = std::chrono::seconds(2);
  try {
    return vestra::design_tool::evaluateScript("script", script, limits);
  } catch (const vestra::design_tool::DiagnosedError&) {
    return std::nullopt;
  }
}

bool isPlain(const std::string& text) {
  return !text.empty() && std::all_of(text.begin(), text.end(), [](unsigned char letter) {
    return std::isalnum(letter) != 0 || letter == '_' || letter == '.';
  });
}

}  // namespace vestra_fuzz
