#include <fmt/format.h>
#include <fmt/ranges.h>

#include "checks/checks.h"
#include "handler/product_profile.h"
#include "handler/rules_file.h"
#include "reading/visible_text.h"

namespace vestra::inspect {
namespace {

std::string place(const ReportFacts& report, const ReportedItem& item) {
  return fmt::format("{}:{}: {}", report.file.path, item.written.line, reading::inQuotes(item.written.key));
}

void checkItem(const ReportFacts& report, const ReportedItem& item, Findings& findings) {
  if (item.hazard) {
    findings.add("report.hazard", fmt::format("{}: {}", place(report, item), *item.hazard));
  }
  if (item.written.value.find('\n') != std::string::npos) {
    findings.add("report.line_feed", place(report, item) + " has a line feed in its value");
  }
  if (!item.personal.empty()) {
    findings.add("report.personal",
                 fmt::format("{} holds {}", place(report, item), fmt::join(item.personal, ", ")));
  }
  const bool isIdentifier = item.written.key == "project_id" || item.written.key == "random_id";
  if (isIdentifier && item.written.client == "project" && item.written.value.empty()) {
    findings.add("report.empty_ids", place(report, item) + " is empty");
  }
}

void checkWhole(const ReportFacts& report, Findings& findings) {
  const std::string& path = report.file.path;
  if (!report.isComplete) {
    findings.add("report.cut", path + " ends before its last line");
  } else if (!report.checksumHour) {
    findings.add("report.checksum",
                 fmt::format("{}: the checksum {} agrees with these items in no hour around {}", path,
                             reading::inQuotes(report.checksum), timeText(report.file.modified)));
  }
  if (report.registration.rfind("VESTRA_TEST_", 0) == 0) {
    findings.add("report.marked",
                 fmt::format("{}: registration {}", path, reading::inQuotes(report.registration)));
  }
  for (const std::string& client : report.lostClients) {
    findings.add("report.lost_client",
                 fmt::format("{} has items of {} and does not register it", path, reading::inQuotes(client)));
  }
}

void checkRules(const ProjectFacts& project, Product product, Findings& findings) {
  const ReportFile* rules = project.find("rules", Oza::profileOf(product).name);
  if (rules == nullptr) {
    return;
  }
  const FileSnapshot file = readFileAt(rules->file.path);
  if (file.text && *file.text != Oza::rulesFileText(product)) {
    findings.add("report.rules", file.path + " differs");
  }
}

}  // namespace

void checkReports(const Facts& facts, Findings& findings) {
  for (const ReportFacts& report : facts.reports) {
    for (const ReportedItem& item : report.items) {
      checkItem(report, item, findings);
    }
    checkWhole(report, findings);
  }
  checkRules(facts.project, Oza::Vestra::KELVO, findings);
  checkRules(facts.project, Oza::Vestra::TAVLO, findings);
}

}  // namespace vestra::inspect
