#include "checks/finding.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

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

void Findings::add(const std::string& id, std::string says, std::vector<std::string> mend) {
  findings.push_back({&checkOf(id), std::move(says), std::move(mend)});
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

std::string shellWord(const std::string& text) {
  const char* plain = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789/._-+,:@%=";
  if (!text.empty() && text.find_first_not_of(plain) == std::string::npos) {
    return text;
  }
  return "'" + boost::algorithm::replace_all_copy(text, "'", "'\\''") + "'";
}

}  // namespace vestra::inspect
