#include <fmt/format.h>
#include <fmt/ranges.h>

#include "checks/checks.h"
#include "handler/command_line.h"
#include "handler/product_profile.h"
#include "handler/site_detection.h"
#include "handler/support_library.h"
#include "reading/visible_text.h"
#include "render/answers.h"

namespace vestra::inspect {
namespace {

void writeUser(const Facts& facts, Page& page) {
  const UserFacts& user = facts.user;
  page.heading("You");
  if (!user.randomId.empty()) {
    page.row("identifier", user.randomId);
    page.row("", fmt::format("line {} of {}", user.line, user.file.path));
  } else if (user.makesNew) {
    page.row("identifier", fmt::format("none yet. The first report makes a random one and {} {} ({})",
                                       user.keepsNew ? "keeps it in" : "cannot keep it in", user.file.path,
                                       nameOf(user.file.kind)));
  } else {
    page.row("identifier", fmt::format("none, and none can be kept in {}: reports say \"\"", user.file.path));
  }
}

std::string originOf(const ProjectFacts& project) {
  if (project.identity.projectId.empty()) {
    return "";
  }
  return project.identity.orbeloFlow != 0 ? " (the program's own)" : "";
}

void writeProject(const Facts& facts, Page& page) {
  const ProjectFacts& project = facts.project;
  page.heading("This project");
  switch (project.state) {
    case IdentityState::fresh:
      page.row("identifier", "none yet: the program's own, or a random one");
      break;
    case IdentityState::usable:
      page.row("identifier", project.identity.projectId.empty()
                                 ? "empty, and stays so"
                                 : project.identity.projectId + originOf(project));
      page.row("", fmt::format("line 5 of {}", project.identityFile.path));
      break;
    default:
      page.row("identifier", fmt::format("{} cannot be used as it is", project.identityFile.path));
  }
  page.row("next report",
           project.state == IdentityState::usable && project.identity.iteration > 0
               ? fmt::format("number {}: {} asked for a report so far", project.identity.iteration,
                             counted(project.identity.iteration - 1, "run"))
               : fmt::format("number {}", project.identity.iteration));
}

std::string whenOf(const Facts& facts, const Prediction& next) {
  if (next.last == 0) {
    return "due now (never sent)";
  }
  if (next.isDue) {
    return fmt::format("due now: last handed over {}, {} ago", timeText(next.last),
                       durationText(facts.view.now - next.last));
  }
  return fmt::format("not due before {}, in {}: last handed over {}", timeText(next.dueFrom),
                     durationText(next.dueFrom - facts.view.now), timeText(next.last));
}

void writeWhen(const Facts& facts, Page& page) {
  page.heading("When");
  page.row("KELVO, TAVLO", whenOf(facts, facts.predictionFor(Oza::Vestra::KELVO)));
  page.row("KELVO_ALT", whenOf(facts, facts.predictionFor(Oza::Vestra::KELVO_ALT)));
}

void writeSite(const Facts& facts, Page& page) {
  const SiteFacts& site = facts.site;
  page.heading("Maker's own machine?");
  page.row(site.internalWithoutOverride ? "yes" : "no",
           "NIS domain name: " + (site.domainName.empty() ? "none" : site.domainName));
  if (site.usesResolverFile && site.line != 0) {
    page.row("", fmt::format("/etc/resolv.conf:{}:{}: {}", site.line, site.column, site.lineText));
  } else if (site.usesResolverFile) {
    page.row("", fmt::format("/etc/resolv.conf: {}, none of which holds \"{}\"",
                             counted(site.resolverLines, "line"), Oza::makerDomain()));
  }
  if (site.internalWithoutOverride) {
    page.row("", site.overrideIsOn ? fmt::format("but reports like any other: {} is set", INTERNAL_VARIABLE)
                                   : "reports are marked as tests");
  }
}

const char* wordOf(ElfState state) {
  switch (state) {
    case ElfState::loadable:
      return "taken";
    case ElfState::missing:
      return "not there";
    case ElfState::wrongClass:
      return "passed";
    default:
      return "the search ends here";
  }
}

void writeSupport(const Facts& facts, Page& page) {
  const SupportFacts& support = facts.support;
  page.heading("Support library");
  page.row(support.opens() ? "found" : "NOT FOUND",
           support.search.chosen.empty() ? Oza::support_library::FILE_NAME : support.search.chosen);
  for (const Candidate& each : support.search.tried) {
    if (each.state != ElfState::missing || support.search.chosen.empty()) {
      page.row("", fmt::format("{} by {}: {}{}", each.path, each.rule, wordOf(each.state),
                               each.state == ElfState::loadable ? "" : " (" + each.reason + ")"));
    }
  }
  for (const Candidate& each : support.search.notReached) {
    page.row("", fmt::format("{} by {}: not reached", each.path, each.rule));
  }
  if (!support.search.chosen.empty()) {
    page.row("", support.missingEntryPoints.empty()
                     ? "has all three entry points; was not asked"
                     : fmt::format("lacks {}", fmt::join(support.missingEntryPoints, ", ")));
  }
}

void writeCommandLines(const Facts& facts, Page& page) {
  page.heading("What the shell will be given");
  for (const Product product : facts.products) {
    page.row(nameOf(product), commandLineOf(facts, product));
  }
  page.row("", "TOOL is the support library's answer");
}

void writeSwitches(const View& view, Page& page) {
  page.heading("Switches");
  page.paragraph(
      2, fmt::format("{}: {}", KEEP_VARIABLE,
                     view.isSwitchedOn(KEEP_VARIABLE) ? "on: script and rules file stay after a report"
                                                      : "off: script and rules file go after a report"));
  page.paragraph(
      2, fmt::format(
             "{}: {}", INTERNAL_VARIABLE,
             view.isSwitchedOn(INTERNAL_VARIABLE) ? "on: no report is marked as the maker's own" : "off"));
}

void writeFiles(const Facts& facts, Page& page) {
  page.heading("Files in " + facts.project.vestra.path);
  if (facts.project.identityFile.exists()) {
    page.row("identity",
             fmt::format("{}, {} bytes, {}", Oza::PROJECT_IDENTITY_FILE, facts.project.identityFile.size,
                         timeText(facts.project.identityFile.modified)));
  }
  for (const ReportFile& file : facts.project.files) {
    page.row(fmt::format("{}, {}", file.role, file.product),
             fmt::format("{} bytes, {}: {}", file.file.size, timeText(file.file.modified),
                         whatItProves(facts, file)));
  }
  if (!facts.project.identityFile.exists() && facts.project.files.empty()) {
    page.row("none", facts.project.vestra.exists() ? "" : "the directory is missing");
  }
}

void writeFindings(const Findings& findings, Page& page) {
  page.heading("Findings");
  for (const Finding& finding : findings.sorted()) {
    page.row(nameOf(finding.check->level), fmt::format("{}: {}", finding.check->id, finding.says));
  }
  if (findings.sorted().empty()) {
    page.row("none", "");
  } else {
    page.row("", "vestra-inspect doctor says what they mean and how to mend them");
  }
}

std::string scriptProof(const Facts& facts, const ReportFile& file) {
  const ReportFacts* report = facts.reportOf(file.product);
  if (report == nullptr) {
    return "cannot be read";
  }
  const bool isNewer = file.file.isYoungerThan(facts.project.identity.lastSendTimeDefault);
  return fmt::format(
      "report number {}; {}", reading::forTerminal(report->projectFact("project_iteration")),
      isNewer ? "was not due" : "kept, or the run did not end: whether it went cannot be told");
}

}  // namespace

std::string verdictOf(const Facts& facts) {
  const Product product = facts.products.front();
  const Prediction& next = facts.predictionFor(product);
  const std::string& directory = facts.project.directory;
  const std::string who = facts.project.state == IdentityState::fresh || product != Oza::Vestra::KELVO_ALT
                              ? "KELVO or TAVLO"
                              : nameOf(product);
  switch (next.outcome) {
    case Outcome::reports:
      return fmt::format("{}: the next {} run will report{}", directory, who,
                         next.last == 0 ? "; nothing was sent so far" : "");
    case Outcome::notDue:
      return fmt::format("{}: not due before {}, in {}", directory, timeText(next.dueFrom),
                         durationText(next.dueFrom - facts.view.now));
    case Outcome::throws:
      return fmt::format("{}: the next run will get an exception and NOT report ({})", directory,
                         next.reason);
    default:
      return fmt::format("{}: the next run will NOT report ({}){}", directory, next.reason,
                         next.deletesIdentity ? ", and forgets this project" : "");
  }
}

std::string commandLineOf(const Facts& facts, Product product) {
  const std::string redirection =
      product == Oza::Vestra::TAVLO ? Oza::redirectionTo(facts.project.pathOf(Oza::LOG_FILE)) : "";
  return Oza::commandLine("TOOL", facts.project.pathOf(Oza::profileOf(product).script), redirection);
}

std::string whatItProves(const Facts& facts, const ReportFile& file) {
  if (file.role == "script") {
    return scriptProof(facts, file);
  }
  if (file.role == "rules") {
    return "the layout of that report";
  }
  if (file.role == "log") {
    return "the tool's whole output of the last run for TAVLO";
  }
  const std::int64_t last = facts.project.identity.lastSendTimeDefault;
  return last != 0 && file.file.modified >= last ? "the tool came as far as writing it after the last report"
                                                 : "from a report before the last one";
}

void writeStatus(const Facts& facts, const Findings& findings, Page& page) {
  page.verdict(verdictOf(facts));
  page.paragraph(0, "Only looked: nothing was changed, started or sent. " + timeText(facts.view.now));
  page.blank();
  writeUser(facts, page);
  writeProject(facts, page);
  writeWhen(facts, page);
  writeSite(facts, page);
  writeSupport(facts, page);
  writeCommandLines(facts, page);
  writeSwitches(facts.view, page);
  writeFiles(facts, page);
  writeFindings(findings, page);
  page.blank();
  page.paragraph(0,
                 "What send answers to the program, and whether the main design tool transmits anything, "
                 "cannot be known from here.");
}

}  // namespace vestra::inspect
