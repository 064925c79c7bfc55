#include "render/redaction.h"

#include <algorithm>
#include <cctype>
#include <string_view>

#include <fmt/format.h>

namespace vestra::inspect {
namespace {

// Of a record that is no identity, the beginning is enough: what is shown of it is marked by its source.
constexpr std::size_t LONGEST_RECORD = 4096;

/// "VESTRA_TEST_KELVO_REG" is that of "REG".
std::string withoutTestMark(const std::string& registration) {
  for (const char* prefix : {"VESTRA_TEST_KELVO_", "VESTRA_TEST_TAVLO_"}) {
    if (registration.rfind(prefix, 0) == 0) {
      return registration.substr(std::string_view(prefix).size());
    }
  }
  return registration;
}

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

Redaction::Redaction(const PersonFacts& person) : on(true) {
  mark(person.home, "<home>", true);
  mark(person.login, "<login>", true);
  mark(person.fullName, "<name>", true);
  mark(person.hostName, "<host>", true);
}

// Identifiers may hold a name, and are marked before it.
Redaction::Redaction(const Facts& facts) : on(true) {
  mark(facts.user.randomId, "<user-id>", false);
  mark(facts.project.identity.projectId, "<project-id>", false);
  for (const std::string& line :
       linesOf(facts.project.identityFile.text.value_or("").substr(0, LONGEST_RECORD))) {
    mark(isPlainNumber(line) ? "" : line, "<project-id>", false);
  }
  int number = 0;
  for (const ReportFacts& report : facts.reports) {
    ++number;
    for (const char* key : {"random_id", "project_id", "registration_id"}) {
      mark(report.projectFact(key), fmt::format("<report-{}-{}>", key, number), false);
    }
    mark(withoutTestMark(report.registration), "<registration>", false);
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
