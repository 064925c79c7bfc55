#include <unistd.h>

#include <algorithm>
#include <cstdint>

#include <fmt/format.h>

#include "checks/checks.h"
#include "handler/product_profile.h"

namespace vestra::inspect {
namespace {

bool isWanted(const Facts& facts, const std::string& product) {
  return std::any_of(facts.products.begin(), facts.products.end(),
                     [&](Product wanted) { return Oza::profileOf(wanted).name == product; });
}

void checkLog(const Facts& facts, Findings& findings) {
  const std::string log = facts.project.pathOf(Oza::LOG_FILE);
  if (!canBeRemoved(log)) {
    findings.add("tool.log", log + " cannot be removed", {"rm -r " + shellWord(log)});
  } else if (isWanted(facts, "TAVLO") && facts.project.find("log", "TAVLO") == nullptr) {
    findings.add("tool.log_missing", log + " is missing");
  }
}

/// What stands where the library writes and removes: a file that it may replace, or nothing.
void checkPlace(const ProjectFacts& project, const char* name, Findings& findings) {
  const std::string path = project.pathOf(name);
  const LookedFile file = lookAt(path);
  if (file.exists() && (!file.isRegular() || !file.writable || !canBeRemoved(path))) {
    findings.add("tool.script_place",
                 fmt::format("{} is a {} with mode {}", path, nameOf(file.kind), modeText(file.mode)),
                 {"rm -r " + shellWord(path)});
  }
}

/// After a report, the tool's own copies are younger than the report.
void checkCopies(const Facts& facts, const char* product, Findings& findings) {
  const ProjectFacts& project = facts.project;
  const std::int64_t last = project.identity.lastSendTimeDefault;
  const ReportFile* script = project.find("script", product);
  const ReportFile* xml = project.find("xml", product);
  if (last == 0 || !isWanted(facts, product)) {
    return;
  }
  const bool isFresh = xml != nullptr && xml->file.modified >= last;
  if (script == nullptr && isFresh) {
    findings.add("report.went", fmt::format("{}: {} was written {}, after line 1 of the identity file",
                                            product, xml->file.path, timeText(xml->file.modified)));
  } else if (script == nullptr) {
    findings.add("tool.failed", fmt::format("{}: a report was handed over {}, and its XML is {}", product,
                                            timeText(last), xml == nullptr ? "missing" : "older"));
  } else if (!script->file.isYoungerThan(last)) {
    findings.add("report.kept",
                 fmt::format("{} is as old as line 1 of the identity file", script->file.path));
  }
}

}  // namespace

void checkTool(const Facts& facts, Findings& findings) {
  if (access("/bin/sh", X_OK) != 0) {
    findings.add("tool.shell", "/bin/sh is missing or may not be run");
  }
  checkLog(facts, findings);
  for (const Product product : {Oza::Vestra::KELVO, Oza::Vestra::TAVLO}) {
    checkPlace(facts.project, Oza::profileOf(product).script, findings);
    checkPlace(facts.project, Oza::profileOf(product).rules, findings);
    checkCopies(facts, Oza::profileOf(product).name, findings);
  }
}

}  // namespace vestra::inspect
