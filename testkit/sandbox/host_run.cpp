#include <vestra/testkit/host_run.h>

namespace vestra::testkit {

bool operator==(const Item& a, const Item& b) {
  return a.client == b.client && a.context == b.context && a.key == b.key && a.value == b.value;
}

const Report* HostRun::report() const { return reports.empty() ? nullptr : &reports.back(); }

std::vector<std::string> HostRun::values(Oza::Vestra::SectionType section, const std::string& key) const {
  const std::string context = contextOf(section);
  const Report* const last = report();
  std::vector<std::string> found;
  for (const Item& item : last != nullptr ? last->items : writtenItems) {
    if (item.context == context && item.key == key) {
      found.push_back(item.value);
    }
  }
  return found;
}

}  // namespace vestra::testkit
