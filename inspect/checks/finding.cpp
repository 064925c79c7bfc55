#include "checks/checks.h"

#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <stdexcept>
#include <utility>

#include <fmt/format.h>
#include <boost/algorithm/string/replace.hpp>

namespace vestra::inspect {
namespace {

const Check& checkOf(const std::string& id) {
  for (const Check& check : allChecks()) {
    if (check.id == id) {
      return check;
    }
  }
  throw std::out_of_range("there is no check " + id);
}

}  // namespace

const char* nameOf(Level level) {
  return level == Level::problem ? "problem" : level == Level::warning ? "warning" : "note";
}

void Findings::add(const std::string& id, std::string says, Fixes fixes) {
  findings.push_back({&checkOf(id), std::move(says), std::move(fixes)});
}

std::vector<Finding> Findings::sorted() const {
  std::vector<Finding> ordered = findings;
  std::stable_sort(ordered.begin(), ordered.end(), [](const Finding& left, const Finding& right) {
    return std::make_pair(right.check->level, left.check) < std::make_pair(left.check->level, right.check);
  });
  return ordered;
}

std::size_t Findings::count(Level level) const {
  return static_cast<std::size_t>(
      std::count_if(findings.begin(), findings.end(),
                    [&](const Finding& finding) { return finding.check->level == level; }));
}

Fixes removalOf(const std::string& path) {
  return canBeRemoved(path) ? Fixes{"rm " + shellWord(path)} : Fixes();
}

Fixes editOf(const FileSnapshot& file, const std::string& script) {
  const bool canBeEdited =
      file.text && !file.link && mayChangeDirectory(parentOf(file.path)) && canBeRemoved(file.path);
  return canBeEdited ? Fixes{fmt::format("sed -i {} {}", shellWord(script), shellWord(file.path))} : Fixes();
}

Fixes modeChange(const FileSnapshot& file, const std::string& change) {
  return file.exists() && !file.link && file.path.front() == '/' && file.owner == geteuid()
             ? Fixes{fmt::format("chmod {} {}", change, shellWord(file.path))}
             : Fixes();
}

std::string describe(const FileSnapshot& file) {
  return fmt::format("{} has mode {} and belongs to user {}", file.path, modeText(file.mode), file.owner);
}

std::string errorText(int error) { return error == 0 ? "cannot be used" : std::strerror(error); }

std::string shellWord(const std::string& text) {
  const char* plain = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789/._-+,:@%=";
  if (!text.empty() && text.find_first_not_of(plain) == std::string::npos) {
    return text;
  }
  return "'" + boost::algorithm::replace_all_copy(text, "'", "'\\''") + "'";
}

}  // namespace vestra::inspect
