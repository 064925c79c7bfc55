// What stands between a report and the main design tool: the support library, the shell, the files.

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <set>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "checks/checks.h"
#include "handler/product_profile.h"
#include "handler/support_library.h"
#include "reading/visible_text.h"

namespace vestra::inspect {
namespace {

using Oza::support_library::FILE_NAME;

/// Who else may change a directory or a file: none of root's and the user's own, unless by its mode.
std::string otherWriterOf(const std::string& path) {
  struct stat status {};
  if (stat(path.c_str(), &status) != 0) {
    return "";
  }
  if (status.st_uid != 0 && status.st_uid != geteuid()) {
    return fmt::format("user {}", status.st_uid);
  }
  return (status.st_mode & S_IWOTH) != 0                         ? "everybody"
         : (status.st_mode & S_IWGRP) != 0 && status.st_gid != 0 ? fmt::format("group {}", status.st_gid)
                                                                 : "";
}

void checkWritability(const SupportFacts& support, std::set<std::string> places, Findings& findings) {
  if (!support.path.empty()) {
    places.insert({parentOf(support.path), support.path});
  }
  for (const std::string& place : places) {
    const std::string writer =
        place.front() == '/' ? otherWriterOf(place) : "whoever owns the current directory";
    if (!writer.empty()) {
      findings.add("support.writable", fmt::format("{} may be written by {}", place, writer),
                   modeChange(lookAt(place), "go-w"));
    }
  }
}

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
  const std::int64_t last = facts.project.identity.lastSendTimeDefault;
  const ReportFile* xml = facts.project.find("xml", product);
  if (last != 0 && facts.project.find("script", product) == nullptr &&
      (xml == nullptr || xml->file.modified < last)) {
    findings.add("tool.failed", fmt::format("{}: a report was handed over {}, and its XML is {}", product,
                                            timeText(last), xml == nullptr ? "missing" : "older"));
  }
}

/// One finding for all items of a kind.
void addItems(const char* id, const ReportFacts& report, const ItemCount& items, Findings& findings) {
  if (items.count != 0) {
    findings.add(id, fmt::format("{}:{}{}", report.file.path, items.first,
                                 items.count == 1 ? "" : fmt::format("; and {} more", items.count - 1)));
  }
}

}  // namespace

void checkSupport(const Facts& facts, Findings& findings) {
  const SupportFacts& support = facts.support;
  std::set<std::string> places;
  for (const std::string& path : support.tried) {
    places.insert(parentOf(path));
  }
  if (support.state == SupportState::absent) {
    findings.add("support.absent",
                 fmt::format("the loader finds no {}{}{}", FILE_NAME, places.empty() ? "" : "; looked in ",
                             fmt::join(places, ", ")));
  } else if (support.state == SupportState::unknown) {
    findings.add("support.unknown", support.reason);
  } else if (!support.opens()) {
    findings.add("support.broken", fmt::format("the loader says: {}", support.reason));
  } else if (!support.missingEntryPoints.empty()) {
    findings.add("support.entry",
                 fmt::format("{} lacks {}", support.path, fmt::join(support.missingEntryPoints, ", ")));
  }
  for (const char* answer : {"exec_path", "regid", "environment"}) {
    if (facts.toolFor(Oza::Vestra::KELVO).isNull(answer)) {
      findings.add("support.null", fmt::format("the stand-in returns null for {}", answer));
    }
  }
  if (support.isStandIn) {
    findings.add("support.standin", support.path);
  }
  checkWritability(support, std::move(places), findings);
}

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
    const char* name = Oza::profileOf(product).name;
    if (isWanted(facts, name)) {
      checkCopies(facts, name, findings);
      checkPlaces(facts, product, findings);
    }
  }
}

void checkReports(const Facts& facts, Findings& findings) {
  for (const ReportFacts& report : facts.reports) {
    addItems("report.hazard", report, report.hazards, findings);
    addItems("report.personal", report, report.personal, findings);
    addItems("report.empty_ids", report, report.emptyIdentifiers, findings);
    if (!report.isComplete) {
      findings.add("report.cut", report.file.path + " ends before its last line");
    } else if (!report.checksumHour) {
      findings.add("report.checksum", fmt::format("{}: the checksum {} agrees with these items in no hour "
                                                  "around {}",
                                                  report.file.path, reading::inQuotes(report.checksum),
                                                  timeText(report.file.modified)));
    }
  }
}

}  // namespace vestra::inspect
