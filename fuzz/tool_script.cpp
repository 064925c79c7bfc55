// Any bytes as the stand-in design tool's script: it is refused, or reported consistently.

#include <cstdint>

#include "expect.h"
#include "report_under_test.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto report = vestra_fuzz::reportOf(std::string(reinterpret_cast<const char*>(data), size));
  if (report) {
    for (const auto& item : report->items) {
      vestra_fuzz::expect(item.section < report->sections.size(), "an item has its section");
    }
    vestra_fuzz::expect(!report->registrations.empty() || report->items.empty(),
                        "items come after registrations");
  }
  return 0;
}
