#include <algorithm>
#include <iterator>
#include <string_view>

#include <vestra/testkit/host_run.h>

#include "recorder/bytes.h"

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

bool holds(const std::string& line, const char* text) { return line.find(text) != std::string::npos; }

/// A message of the undefined-behaviour sanitizer stands behind its place, "file:line:column".
bool isUndefinedBehaviour(const std::string& line) {
  const std::size_t at = line.find(": runtime error: ");
  return at != std::string::npos && at > 0 && line[at - 1] >= '0' && line[at - 1] <= '9';
}

/// The first line of a sanitizer's report.
bool isFinding(const std::string& line) {
  return isUndefinedBehaviour(line) ||
         (holds(line, "Sanitizer: ") && (holds(line, "ERROR: ") || holds(line, "WARNING: ")));
}

/// One that the process did not survive.
bool isFatal(const std::string& finding) {
  return holds(finding, "ERROR: ") && !holds(finding, "LeakSanitizer: ");
}

}  // namespace

bool operator==(const Item& a, const Item& b) {
  return a.client == b.client && a.context == b.context && a.key == b.key && a.value == b.value;
}

bool operator==(const Exception& a, const Exception& b) { return a.type == b.type && a.text == b.text; }

bool operator==(const Send& a, const Send& b) {
  return a.projectDirectory == b.projectDirectory && a.product == b.product && a.answer == b.answer &&
         a.exception == b.exception;
}

std::string Report::xml() const { return fileEndingWith(".xml", files); }

std::string Report::html() const { return fileEndingWith(".html", files); }

const Report* HostRun::report() const { return reports.empty() ? nullptr : &reports.back(); }

std::vector<Item> HostRun::items(Oza::Vestra::SectionType section) const {
  const std::string context = contextOf(section);
  const Report* const last = report();
  const std::vector<Item>& all = last != nullptr ? last->items : writtenItems;
  std::vector<Item> found;
  std::copy_if(all.begin(), all.end(), std::back_inserter(found),
               [&](const Item& item) { return item.context == context; });
  return found;
}

std::vector<std::string> HostRun::values(Oza::Vestra::SectionType section, const std::string& key) const {
  std::vector<std::string> found;
  for (const Item& item : items(section)) {
    if (item.key == key) {
      found.push_back(item.value);
    }
  }
  return found;
}

bool HostRun::hasScript() const { return !script.empty() || !writtenItems.empty() || !reports.empty(); }

std::vector<std::string> HostRun::sanitizerFindings() const {
  std::vector<std::string> found;
  for (const std::string& line : linesOf(output + "\n" + errorOutput)) {
    if (isFinding(line)) {
      found.push_back(line);
    }
  }
  return found;
}

bool HostRun::crashed() const {
  const auto findings = sanitizerFindings();
  return signal || timedOut ||
         (exitStatus.value_or(0) != 0 && std::any_of(findings.begin(), findings.end(), isFatal));
}

bool HostRun::endedWell() const { return !crashed() && !exception; }

}  // namespace vestra::testkit
