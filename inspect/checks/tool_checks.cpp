#include <algorithm>
#include <cstdint>
#include <set>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "checks/checks.h"
#include "handler/product_profile.h"
#include "reading/visible_text.h"

namespace vestra::inspect {
namespace {

bool isWanted(const Facts& facts, const std::string& product) {
  return std::any_of(facts.products.begin(), facts.products.end(),
                     [&](Product wanted) { return Oza::profileOf(wanted).name == product; });
}

/// What stands where the library writes and removes.
void checkPlaces(const Facts& facts, Product product, Findings& findings) {
  const ToolFacts& tool = facts.toolFor(product);
  if (tool.isLogStuck) {
    findings.add("tool.log", facts.project.pathOf(Oza::LOG_FILE) + " cannot be removed");
  }
  std::set<std::string> stuck(tool.notWritable.begin(), tool.notWritable.end());
  stuck.insert(tool.notRemovable.begin(), tool.notRemovable.end());
  const FileSnapshot directory = lookAt(facts.project.directory + "/vestra");
  const bool isLocked = directory.kind == FileKind::directory && !mayChangeDirectory(directory.path);
  if (!stuck.empty() && reasonOf(facts.project).empty()) {
    findings.add("tool.script_place", fmt::format("{} cannot be replaced or removed", fmt::join(stuck, ", ")),
                 isLocked ? modeChange(directory, "u+rwx") : Fixes());
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
  if (facts.toolFor(Oza::Vestra::KELVO).lacksShell) {
    findings.add("tool.shell", "/bin/sh is missing or may not be run");
  }
  const std::string& missing = facts.toolFor(Oza::Vestra::KELVO).missingTool;
  if (!missing.empty()) {
    findings.add("tool.missing",
                 fmt::format("the stand-in names {}, which is not there", reading::inQuotes(missing)));
  }
  for (const Product product : {Oza::Vestra::KELVO, Oza::Vestra::TAVLO}) {
    checkCopies(facts, Oza::profileOf(product).name, findings);
    if (isWanted(facts, Oza::profileOf(product).name)) {
      checkPlaces(facts, product, findings);
    }
  }
}

}  // namespace vestra::inspect
