#include <fmt/format.h>

#include "checks/checks.h"
#include "render/answers.h"

namespace vestra::inspect {
namespace {

void writeFinding(const Finding& finding, Page& page) {
  page.blank();
  page.level(finding.check->level, finding.check->id);
  page.paragraph(2, finding.says + ".");
  page.paragraph(2, finding.check->means);
  for (const std::string& command : finding.fixes) {
    page.command(command);
  }
}

}  // namespace

void writeDoctor(const Facts& facts, const Findings& findings, Page& page) {
  writeVerdicts(facts, page);
  for (const Finding& finding : findings.sorted()) {
    writeFinding(finding, page);
  }
  page.blank();
  page.paragraph(0, "Rights: " + whoseRights(facts) + ".");
  page.paragraph(0, fmt::format("{} checks: {}, {}, {}.", allChecks().size(),
                                counted(findings.count(Level::problem), "problem"),
                                counted(findings.count(Level::warning), "warning"),
                                counted(findings.count(Level::note), "note")));
  page.paragraph(0,
                 "Not seen from here: what send returned or threw, what the support library answers, whether "
                 "anything was transmitted; refusals by a file server or by SELinux or AppArmor.");
}

}  // namespace vestra::inspect
