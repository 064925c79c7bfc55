#include <algorithm>
#include <string_view>

#include <vestra/testkit/host_run.h>

namespace vestra::testkit {
namespace {

std::string fileEndingWith(std::string_view end, const std::map<std::string, std::string>& files) {
  for (const auto& [name, bytes] : files) {
    if (name.size() > end.size() && name.compare(name.size() - end.size(), end.size(), end) == 0) {
      return bytes;
    }
  }
  return {};
}

}  // namespace

bool operator==(const Item& a, const Item& b) {
  return a.client == b.client && a.context == b.context && a.key == b.key && a.value == b.value;
}

std::string Report::xml() const { return fileEndingWith(".xml", files); }

std::string Report::html() const { return fileEndingWith(".html", files); }

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

bool HostRun::hasScript() const { return !script.empty() || !writtenItems.empty() || !reports.empty(); }

bool HostRun::endedWell() const { return !signal && !exception && !timedOut; }

}  // namespace vestra::testkit
