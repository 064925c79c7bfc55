#include <cerrno>

#include <fmt/format.h>
#include <boost/algorithm/string/trim.hpp>

#include "checks/checks.h"

namespace vestra::inspect {
namespace {

constexpr std::size_t LINES = 5;
constexpr std::size_t NUMBER_LINES = 4;
// No time or count has more digits.
constexpr std::size_t LONGEST_NUMBER = 19;

std::string place(const Facts& facts, std::size_t line) {
  return fmt::format("{}:{}", facts.project.identityFile.path, line);
}

/// The line of an identity, or its mark.
std::string shown(const Facts& facts, const std::string& line) {
  return facts.secret(line, isPlainNumber(line) ? "" : "<project-id>");
}

Fixes removal(const Facts& facts) { return removalOf(facts.project.identityFile.path); }

Fixes lineEdit(const Facts& facts, std::size_t line, const std::string& text) {
  return editOf(facts.project.identityFile, fmt::format("{}s/.*/{}/", line, text));
}

void checkFault(const Facts& facts, const std::vector<std::string>& lines, Findings& findings) {
  const NumberFault& fault = *facts.project.fault;
  const std::string& text = lines[fault.line - 1];
  std::string says = fmt::format("{}: {} is {}", place(facts, fault.line), shown(facts, text),
                                 fault.isTooLarge ? "too large" : "no number");
  if (fault.isTooLarge && text.size() > LONGEST_NUMBER) {
    says += ", as where two runs wrote at once";
  }
  if (lines.size() >= LINES && !lines[4].empty()) {
    says += fmt::format(". To keep the identifier {}, put a number there while no host runs",
                        shown(facts, lines[4]));
  }
  findings.add("identity.number", says, lineEdit(facts, fault.line, fault.line == 3 ? "1" : "0"));
}

/// What the library reads although it would not write it; all of it in one finding.
std::string oddForms(const Facts& facts, const std::vector<std::string>& lines) {
  std::string odd;
  const auto note = [&](const std::string& what) { odd += (odd.empty() ? "" : ", ") + what; };
  for (std::size_t i = 0; i < lines.size() && i < NUMBER_LINES; ++i) {
    const std::string line = boost::algorithm::trim_right_copy(lines[i]);
    if (line.empty()) {
      note(fmt::format("line {} is empty", i + 1));
    } else if (!isPlainNumber(line)) {
      note(fmt::format("line {} is {}", i + 1, shown(facts, line)));
    }
  }
  if (facts.project.identity.orbeloFlow != 0 && facts.project.identity.orbeloFlow != 1) {
    note("line 4 is neither 0 nor 1");
  }
  if (lines.size() > LINES) {
    note(fmt::format("there are {} lines", lines.size()));
  } else if (lines.size() == LINES && facts.project.identityFile.text->back() != '\n') {
    note("line 5 has no end");
  }
  return odd;
}

/// Whether the run after the next one finds numbers that it cannot read.
void checkIteration(const Facts& facts, Findings& findings) {
  const auto iteration = static_cast<std::int64_t>(facts.project.identity.iteration);
  Oza::ProjectIdentity unused;
  if (!Oza::parseProjectIdentity(
          Oza::formatProjectIdentity(identityAfter(facts.context, facts.project, Oza::Vestra::KELVO)),
          unused)) {
    findings.add("identity.overflow", fmt::format("{} says {}", place(facts, 3), iteration),
                 lineEdit(facts, 3, "1"));
  } else if (iteration < 0) {
    findings.add("identity.negative",
                 fmt::format("{} says {}: the report says {}", place(facts, 3), iteration,
                             facts.project.identity.iteration),
                 lineEdit(facts, 3, "1"));
  }
}

void checkIdentifier(const Facts& facts, const std::string& identifier, Findings& findings) {
  const std::string says =
      fmt::format("{}: {}", place(facts, LINES), facts.secret(identifier, "<project-id>"));
  if (identifier.empty()) {
    findings.add("identity.id_empty", place(facts, LINES) + " is empty", removal(facts));
  } else if (identifier.back() == '\r') {
    findings.add("identity.carriage_return", says, editOf(facts.project.identityFile, "s/\\r$//"));
  }
  if (identifier.find('\0') != std::string::npos) {
    findings.add("identity.id_nul", says, removal(facts));
  }
  if (holdsScript(identifier)) {
    findings.add("identity.id_script", says, removal(facts));
  }
  if (identifier.size() >= 72 && identifier.find('-') != std::string::npos) {
    findings.add("identity.merged", says, removal(facts));
  }
}

void checkText(const Facts& facts, Findings& findings) {
  const std::string& path = facts.project.identityFile.path;
  const std::vector<std::string> lines = linesOf(*facts.project.identityFile.text);
  if (lines.empty()) {
    findings.add("identity.empty", path + " is empty", removal(facts));
    return;
  }
  if (facts.project.fault) {
    checkFault(facts, lines, findings);
    return;
  }
  const std::string odd = oddForms(facts, lines);
  if (!odd.empty()) {
    findings.add("identity.form", path + ": " + odd);
  }
  checkIteration(facts, findings);
  if (lines.size() < LINES) {
    findings.add("identity.cut", fmt::format("{} ends after line {}", path, lines.size()), removal(facts));
  } else {
    checkIdentifier(facts, lines[4], findings);
  }
}

void checkUse(const Facts& facts, Findings& findings) {
  const FileSnapshot& file = facts.project.identityFile;
  const std::string reason = reasonOf(facts.project);
  if (reason == "identity.special") {
    findings.add(reason, fmt::format("{} is a {}, no file", file.path, nameOf(file.kind)));
  } else if (reason == "identity.unwritable" && file.exists()) {
    findings.add(reason, describe(file) + " and cannot be written", modeChange(file, "u+rw"));
  } else if (reason == "identity.loop") {
    findings.add(reason, file.path + " is a link that leads back to itself", removal(facts));
  } else if (reason.rfind("identity.", 0) == 0 && reason != "identity.number" && reason != "identity.link") {
    findings.add(reason, fmt::format("{}: {}", file.path, errorText(file.error + file.readError)));
  } else if (file.isUnreadable()) {
    findings.add("identity.unreadable", describe(file) + " and cannot be read", modeChange(file, "u+r"));
  }
}

}  // namespace

void checkIdentity(const Facts& facts, Findings& findings) {
  const FileSnapshot& file = facts.project.identityFile;
  if (file.link && file.error != ELOOP) {
    findings.add("identity.link",
                 file.path + " is a link" +
                     (reasonOf(facts.project) == "identity.link" ? " to where nothing can be created" : ""));
  }
  if (file.kind == FileKind::missing) {
    findings.add("identity.missing", file.path + " is missing");
  }
  checkUse(facts, findings);
  if (file.text) {
    checkText(facts, findings);
  }
}

}  // namespace vestra::inspect
