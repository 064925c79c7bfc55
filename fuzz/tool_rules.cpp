// Any bytes as the stand-in design tool's rules file: it is refused, or no client has
// two rules for one context.

#include <cstdint>
#include <set>

#include "design_tool/diagnosis/diagnostic.h"
#include "design_tool/rules/rules.h"
#include "expect.h"

// libconfig loses the text that it was reading when it meets an error in a quoted
// text. The tool ends after one file. The name is LeakSanitizer's.
// NOLINTNEXTLINE(bugprone-reserved-identifier)
extern "C" const char* __lsan_default_suppressions();
extern "C" const char* __lsan_default_suppressions() { return "leak:libconfig++\n"; }

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  try {
    std::set<std::pair<std::string, std::string>> seen;
    for (const auto& rule :
         vestra::design_tool::parseRules("rules", std::string(reinterpret_cast<const char*>(data), size))) {
      vestra_fuzz::expect(seen.emplace(rule.client, rule.context).second, "one rule for each context");
    }
  } catch (const vestra::design_tool::DiagnosedError&) {
  }
  return 0;
}
