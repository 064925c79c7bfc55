// The support library's environment text: any text makes a whole script, and one of
// plain fields reaches the report field for field.

#include <algorithm>
#include <cstdint>
#include <sstream>

#include "expect.h"
#include "report_under_test.h"

using vestra_fuzz::expect;

namespace {

std::vector<std::string> fieldsOf(const std::string& text) {
  std::vector<std::string> fields{""};
  for (const char letter : text) {
    if (letter == '#') {
      fields.emplace_back();
    } else {
      fields.back() += letter;
    }
  }
  return fields;
}

void expectPairsInReport(const std::vector<std::string>& fields, const vestra::design_tool::Report& report) {
  std::vector<std::string> reported;
  for (const auto& item : report.items) {
    if (report.sections[item.section].context == "user_environment") {
      reported.push_back(item.key);
      reported.push_back(item.value);
    }
  }
  const std::size_t pairs = std::min<std::size_t>(fields.size() / 2, 6);
  expect(reported == std::vector<std::string>(fields.begin(),
                                              fields.begin() + static_cast<std::ptrdiff_t>(2 * pairs)),
         "the first six pairs describe the user's environment");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string text(reinterpret_cast<const char*>(data), size);
  text.resize(std::min(text.find('\0'), size));
  const std::string script = vestra_fuzz::scriptOf({}, text);
  expect(script.rfind("vestra_init ", 0) == 0, "the script begins");
  expect(script.size() > 17 && script.substr(script.size() - 17) == "vestra_terminate\n", "the script ends");
  const std::vector<std::string> fields = fieldsOf(text);
  if (std::all_of(fields.begin(), fields.end(), vestra_fuzz::isPlain)) {
    const auto report = vestra_fuzz::reportOf(script);
    expect(report.has_value(), "a script of plain fields is accepted");
    expectPairsInReport(fields, *report);
  }
  return 0;
}
