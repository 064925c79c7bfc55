#include <cerrno>

#include <fmt/format.h>

#include "checks/checks.h"
#include "reading/visible_text.h"

namespace vestra::inspect {
namespace {

constexpr std::size_t LINES = 5;
// No time or count has more digits.
constexpr std::size_t LONGEST_NUMBER = 19;
constexpr std::int64_t CLOCK_TOLERANCE = 60;

void checkDirectory(const Facts& facts, Findings& findings) {
  const ProjectFacts& project = facts.project;
  const FileSnapshot vestra = lookAt(project.directory + "/vestra");
  const std::string reason = reasonOf(project);
  if (reason.rfind("project.", 0) == 0) {
    findings.add(reason, fmt::format("nothing can be created in {}", project.obstacle),
                 reason == "project.unwritable" ? modeChange(lookAt(project.obstacle), "u+rwx") : Fixes());
  } else if (!project.root.exists()) {
    findings.add("project.missing", project.directory + " does not exist");
  } else if (isFull(project.directory)) {
    findings.add("project.full", "no space or no inodes are left in " + project.directory);
  }
  if (vestra.exists() && (vestra.mode & 0002) != 0) {
    findings.add("project.shared_writable", describe(vestra), modeChange(vestra, "o-w"));
  }
  if (project.root.exists() && vestra.kind == FileKind::missing) {
    findings.add("send.none", vestra.path + " is missing");
  }
  const ToolFacts& tool = facts.toolFor(Oza::Vestra::KELVO);
  if (tool.isPathChanged || tool.isPathUnclear) {
    findings.add("project.shell", fmt::format("the shell reads {} as {} words than this one",
                                              reading::inQuotes(project.directory, 400),
                                              tool.isPathChanged ? "other" : "perhaps other"));
  }
  if (tool.isSizeLimited()) {
    findings.add("project.limit", fmt::format("the file-size limit (ulimit -f) is {} bytes", tool.sizeLimit));
  }
}

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

/// Whether the run after the next one finds numbers that it cannot read.
void checkIteration(const Facts& facts, Findings& findings) {
  Oza::ProjectIdentity unused;
  if (!Oza::parseProjectIdentity(
          Oza::formatProjectIdentity(identityAfter(facts.context, facts.project, Oza::Vestra::KELVO)),
          unused)) {
    findings.add("identity.overflow",
                 fmt::format("{} says {}", place(facts, 3),
                             static_cast<std::int64_t>(facts.project.identity.iteration)),
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

void checkIdentity(const Facts& facts, Findings& findings) {
  const FileSnapshot& file = facts.project.identityFile;
  if (file.link && file.error != ELOOP) {
    findings.add("identity.link",
                 file.path + " is a link" +
                     (reasonOf(facts.project) == "identity.link" ? " to where nothing can be created" : ""));
  }
  checkUse(facts, findings);
  if (file.text) {
    checkText(facts, findings);
  }
}

void checkTimes(const Facts& facts, Findings& findings) {
  const FileSnapshot& file = facts.project.identityFile;
  if (facts.project.state != IdentityState::usable) {
    return;
  }
  for (const Product product : {Oza::Vestra::KELVO, Oza::Vestra::KELVO_ALT}) {
    const Prediction& next = facts.predictionFor(product);
    const std::size_t line = product + 1;
    if (next.last > facts.context.now) {
      findings.add("due.future",
                   fmt::format("{} says {}, and now is {}", place(facts, line), timeText(next.last),
                               timeText(facts.context.now)),
                   lineEdit(facts, line, "0"));
    }
  }
  if (between(facts.context.now, file.modified) > CLOCK_TOLERANCE) {
    findings.add("clock.behind", fmt::format("{} was last written {} by the file system's time", file.path,
                                             timeText(file.modified)));
  }
}

}  // namespace

void checkProject(const Facts& facts, Findings& findings) {
  checkDirectory(facts, findings);
  checkIdentity(facts, findings);
  checkTimes(facts, findings);
}

}  // namespace vestra::inspect
