#include <cstdint>
#include <sstream>
#include <stdexcept>

#include <fmt/format.h>

#include "checks/checks.h"
#include "reading/visible_text.h"

namespace vestra::inspect {
namespace {

constexpr std::size_t LINES = 5;
constexpr std::size_t NUMBER_LINES = 4;

std::string removal(const Facts& facts) { return "rm " + shellWord(facts.project.identityFile.path); }

std::string lineEdit(const Facts& facts, std::size_t line, const std::string& text) {
  return fmt::format("sed -i {} {}", shellWord(fmt::format("{}s/.*/{}/", line, text)),
                     shellWord(facts.project.identityFile.path));
}

std::string place(const Facts& facts, std::size_t line) {
  return fmt::format("{}:{}", facts.project.identityFile.path, line);
}

void checkFault(const Facts& facts, const std::vector<std::string>& lines, Findings& findings) {
  const NumberFault& fault = *facts.project.fault;
  const std::string& text = lines[fault.line - 1];
  // More digits than any time or count has: two lines ran together.
  if (fault.isTooLarge && text.size() > 19) {
    findings.add("identity.merged", fmt::format("{}: {}", place(facts, fault.line), reading::inQuotes(text)));
  }
  std::string says = fmt::format("{}: {} is {}", place(facts, fault.line), reading::inQuotes(text),
                                 fault.isTooLarge ? "too large" : "no number");
  if (lines.size() >= LINES && !lines[4].empty()) {
    says += fmt::format(". To keep the identifier {}, put a number there while no host runs",
                        reading::inQuotes(lines[4]));
  }
  const std::string number = fault.line == 3 ? "1" : "0";
  findings.add(fault.isTooLarge ? "identity.range" : "identity.number", says,
               {lineEdit(facts, fault.line, number)});
}

/// What the library skips at a number's start is skipped here too.
bool hasTextBehindNumber(const std::string& line) {
  const std::size_t sign = line.find_first_not_of(" \t\v\f\r");
  const std::size_t digits = line.find_first_not_of("+-", sign);
  return line.find_first_not_of("0123456789", digits) != std::string::npos;
}

void checkNumbers(const Facts& facts, const std::vector<std::string>& lines, Findings& findings) {
  for (std::size_t i = 0; i < lines.size() && i < NUMBER_LINES; ++i) {
    if (lines[i].empty()) {
      findings.add("identity.blank_line", place(facts, i + 1) + " is empty");
    } else if (hasTextBehindNumber(lines[i])) {
      findings.add("identity.trailing",
                   fmt::format("{}: {}", place(facts, i + 1), reading::inQuotes(lines[i])));
    }
  }
  const Oza::ProjectIdentity& identity = facts.project.identity;
  if (identity.orbeloFlow != 0 && identity.orbeloFlow != 1) {
    findings.add("identity.flow", fmt::format("{} says {}", place(facts, 4), identity.orbeloFlow));
  }
  if (static_cast<std::int64_t>(identity.iteration) < 0) {
    findings.add("identity.negative",
                 fmt::format("{} is negative: the report says {}", place(facts, 3), identity.iteration),
                 {lineEdit(facts, 3, "1")});
  }
}

/// Whether the run after the next one finds numbers that it cannot read.
void checkOverflow(const Facts& facts, Findings& findings) {
  std::istringstream next(
      Oza::formatProjectIdentity(identityAfter(facts.view, facts.project, Oza::Vestra::KELVO)));
  Oza::ProjectIdentity unused;
  try {
    Oza::readProjectIdentity(next, unused);
  } catch (const std::logic_error&) {
    findings.add("identity.overflow",
                 fmt::format("{} says {}", place(facts, 3),
                             static_cast<std::int64_t>(facts.project.identity.iteration)),
                 {lineEdit(facts, 3, "1")});
  }
}

void checkIdentifier(const Facts& facts, const std::string& identifier, Findings& findings) {
  const std::string says = fmt::format("{}: {}", place(facts, LINES), reading::inQuotes(identifier));
  if (identifier.empty()) {
    findings.add("identity.id_empty", place(facts, LINES) + " is empty", {removal(facts)});
    return;
  }
  if (identifier.back() == '\r') {
    findings.add("identity.id_cr", says,
                 {fmt::format("sed -i '5s/\\r$//' {}", shellWord(facts.project.identityFile.path))});
  }
  if (identifier.find('\0') != std::string::npos) {
    findings.add("identity.id_nul", says, {removal(facts)});
  }
  if (holdsScript(identifier)) {
    findings.add("identity.id_script", says, {removal(facts)});
  }
  if (identifier.size() >= 72 && identifier.find('-') != std::string::npos) {
    findings.add("identity.merged", says, {removal(facts)});
  }
}

void checkLines(const Facts& facts, const std::vector<std::string>& lines, Findings& findings) {
  checkNumbers(facts, lines, findings);
  checkOverflow(facts, findings);
  if (lines.size() < LINES) {
    findings.add("identity.cut",
                 fmt::format("{} ends after line {}", facts.project.identityFile.path, lines.size()),
                 {removal(facts)});
    return;
  }
  checkIdentifier(facts, lines[4], findings);
  if (lines.size() > LINES) {
    findings.add("identity.more_lines",
                 fmt::format("{} has {} lines", facts.project.identityFile.path, lines.size()));
  } else if (facts.project.identityFile.text->back() != '\n') {
    findings.add("identity.no_line_end", place(facts, LINES) + " has no line end");
  }
}

void checkText(const Facts& facts, Findings& findings) {
  const std::string& text = *facts.project.identityFile.text;
  if (text.empty()) {
    findings.add("identity.empty", facts.project.identityFile.path + " is empty", {removal(facts)});
    return;
  }
  const std::vector<std::string> lines = linesOf(text);
  if (facts.project.fault) {
    checkFault(facts, lines, findings);
  } else {
    checkLines(facts, lines, findings);
  }
}

void checkLink(const Facts& facts, Findings& findings) {
  const LookedFile& file = facts.project.identityFile;
  if (!file.link) {
    return;
  }
  const std::string says = fmt::format("{} is a link to {}", file.path, reading::inQuotes(*file.link));
  const bool isLoop = file.error != 0;
  findings.add(isLoop ? "identity.loop" : "identity.link", says,
               isLoop ? std::vector{removal(facts)} : std::vector<std::string>());
}

}  // namespace

void checkIdentity(const Facts& facts, Findings& findings) {
  const LookedFile& file = facts.project.identityFile;
  checkLink(facts, findings);
  if (file.kind == FileKind::missing) {
    findings.add("identity.missing", file.path + " is missing");
  } else if (file.exists() && !file.isRegular()) {
    findings.add("identity.special", fmt::format("{} is a {}, no file", file.path, nameOf(file.kind)),
                 {"rm -r " + shellWord(file.path)});
  } else if (file.exists() && !file.writable) {
    findings.add(
        "identity.unwritable",
        fmt::format("{} has mode {} and belongs to user {}", file.path, modeText(file.mode), file.owner),
        {"chmod u+rw " + shellWord(file.path)});
  } else if (file.exists() && file.readFailed) {
    findings.add("identity.read_error", file.path + " cannot be read to its end");
  } else if (file.exists() && !file.text) {
    findings.add(
        "identity.unreadable",
        fmt::format("{} has mode {} and belongs to user {}", file.path, modeText(file.mode), file.owner),
        {"chmod u+r " + shellWord(file.path)});
  } else if (file.text) {
    checkText(facts, findings);
  } else if (file.error != 0 && !file.link) {
    findings.add("identity.unwritable", file.path + " cannot be reached");
  }
}

}  // namespace vestra::inspect
