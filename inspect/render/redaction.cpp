#include "render/redaction.h"

#include <algorithm>
#include <cctype>

#include <fmt/format.h>

namespace vestra::inspect {
namespace {

bool isPartOfWord(const std::string& text, std::size_t position) {
  return position < text.size() && std::isalnum(static_cast<unsigned char>(text[position])) != 0;
}

void replaceIn(std::string& text, const std::string& what, const std::string& with, bool wordsOnly) {
  for (std::size_t found = text.find(what); found != std::string::npos; found = text.find(what, found)) {
    const bool inWord =
        (found > 0 && isPartOfWord(text, found - 1)) || isPartOfWord(text, found + what.size());
    if (wordsOnly && inWord) {
      ++found;
    } else {
      text.replace(found, what.size(), with);
      found += with.size();
    }
  }
}

}  // namespace

Redaction::Redaction(const PersonFacts& person) {
  mark(person.home, "<home>", true);
  mark(person.login, "<login>", true);
  mark(person.fullName, "<name>", true);
  mark(person.hostName, "<host>", true);
}

// Identifiers may hold a name, and are marked before it.
Redaction::Redaction(const Facts& facts) {
  mark(facts.user.randomId, "<user-id>", false);
  mark(facts.project.identity.projectId, "<project-id>", false);
  int number = 0;
  for (const ReportFacts& report : facts.reports) {
    ++number;
    mark(report.projectFact("random_id"), fmt::format("<report-user-id-{}>", number), false);
    mark(report.projectFact("project_id"), fmt::format("<report-project-id-{}>", number), false);
  }
  const Redaction person(facts.person);
  marks.insert(marks.end(), person.marks.begin(), person.marks.end());
}

std::string Redaction::operator()(std::string text) const {
  for (const Mark& each : marks) {
    replaceIn(text, each.text, each.with, each.wordsOnly);
  }
  return text;
}

// The fixed word that a missing fact is told by identifies nobody.
void Redaction::mark(const std::string& text, const std::string& with, bool wordsOnly) {
  const bool isKnown =
      std::any_of(marks.begin(), marks.end(), [&](const Mark& each) { return each.text == text; });
  if (text.size() >= 2 && text != "not_applicable" && !isKnown) {
    marks.push_back({text, with, wordsOnly});
  }
}

}  // namespace vestra::inspect
