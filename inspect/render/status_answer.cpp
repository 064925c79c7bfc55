#include <unistd.h>

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

// A record is read to its first MiB: what of it is shown is enough to recognise it.
std::string shownIdentifier(const Facts& facts, const std::string& identifier, const char* mark) {
  constexpr std::size_t longest = 200;
  return facts.isRedacted ? mark
         : identifier.size() <= longest
             ? identifier
             : fmt::format("{}... ({} bytes)", identifier.substr(0, longest), identifier.size());
}

void writeUser(const Facts& facts, Page& page) {
  const UserFacts& user = facts.user;
  page.heading("You");
  page.row("rights", whoseRights(facts));
  if (!user.randomId.empty()) {
    page.row("identifier", shownIdentifier(facts, user.randomId, "<user-id>"));
    page.row("", fmt::format("line {} of {}", user.line, user.file.path));
  } else if (user.makesNew) {
    page.row("identifier", fmt::format("none yet. The first report creates a random one and {} {} ({})",
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
      page.row("identifier",
               project.identity.projectId.empty()
                   ? "empty, and stays so"
                   : shownIdentifier(facts, project.identity.projectId, "<project-id>") + originOf(project));
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

/// Files of the design tool beside an identity that records no report.
std::string traceBeside(const Facts& facts, const Prediction& next) {
  const ReportFile* xml = facts.project.find("xml", Oza::profileOf(next.product).name);
  return next.last != 0 || xml == nullptr
             ? ""
             : fmt::format("; {} of {} lies beside it", xml->role, timeText(xml->file.modified));
}

void writeWhen(const Facts& facts, Page& page) {
  page.heading("When");
  for (const Prediction& next : facts.predictions) {
    page.row(nameOf(next.product), verdictOf(facts, next));
    page.row("", (next.last == 0 ? "no report is recorded as handed over"
                                 : "last handed over " + timeText(next.last)) +
                     traceBeside(facts, next));
  }
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

void writeSupport(const Facts& facts, Page& page) {
  const SupportFacts& support = facts.support;
  page.heading("Support library");
  page.row(nameOf(support.state), support.path.empty() ? Oza::support_library::FILE_NAME : support.path);
  if (!support.opens()) {
    page.row("", support.reason);
  } else if (support.missingEntryPoints.empty()) {
    page.row("", "has all three entry points; was not asked");
  } else {
    page.row("", fmt::format("lacks {}", fmt::join(support.missingEntryPoints, ", ")));
  }
  for (const std::string& path : support.tried) {
    page.row("", "tried " + path);
  }
}

void writeCommandLines(const Facts& facts, Page& page) {
  page.heading("What the shell will be given");
  for (const Product product : facts.products) {
    page.row(nameOf(product), commandLineOf(facts, product));
  }
  page.row("", "TOOL is the support library's answer");
}

void writeSwitches(const HostContext& context, Page& page) {
  page.heading("Switches");
  page.paragraph(
      2, fmt::format("{}: {}", KEEP_VARIABLE,
                     context.isSwitchedOn(KEEP_VARIABLE) ? "on: script and rules file stay after a report"
                                                         : "off: script and rules file go after a report"));
  page.paragraph(
      2, fmt::format(
             "{}: {}", INTERNAL_VARIABLE,
             context.isSwitchedOn(INTERNAL_VARIABLE) ? "on: no report is marked as the maker's own" : "off"));
  page.paragraph(2, "none turns reports off: see \"Stop it\" in Vestra's privacy page");
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
    page.row("", "vestra-inspect doctor says what they mean and how to fix them");
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

// The reason stands with a report that is not due yet, too: waiting alone would not help.
std::string verdictOf(const Facts& facts, const Prediction& next) {
  const std::string reason = next.reason.empty() ? "" : ": " + next.reason;
  switch (next.outcome) {
    case Outcome::reports:
      return "due now";
    case Outcome::notDue:
      return fmt::format("due at {}, in {}{}", timeText(next.dueFrom),
                         durationText(between(facts.context.now, next.dueFrom)),
                         reason.empty() ? "" : ", but cannot report" + reason);
    case Outcome::unknown:
      return "cannot tell" + reason;
    case Outcome::dies:
      return "cannot report" + reason + "; the program is ended";
    case Outcome::throws:
      return "cannot report" + reason + "; the program gets an exception";
    default:
      return "cannot report" + reason + (next.deletesIdentity ? "; the project is forgotten" : "");
  }
}

std::string verdictOf(const Facts& facts) {
  std::string verdict = facts.project.directory + ":";
  for (const Prediction& next : facts.predictions) {
    verdict += fmt::format("{} {} {}", verdict.back() == ':' ? "" : ";", nameOf(next.product),
                           verdictOf(facts, next));
  }
  return verdict;
}

void writeVerdicts(const Facts& facts, Page& page) {
  page.verdict(facts.project.directory);
  for (const Prediction& next : facts.predictions) {
    page.row(nameOf(next.product), verdictOf(facts, next));
  }
}

std::string whoseRights(const Facts& facts) {
  const std::string tested = fmt::format("those of user {}{}", geteuid(), geteuid() == 0 ? " (root)" : "");
  const FileSnapshot home = lookAt(facts.context.variable("HOME"));
  return home.exists() && home.owner != geteuid()
             ? fmt::format("{} were tested; the home is user {}'s, and --as tests that user's", tested,
                           home.owner)
             : tested + " were tested";
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
  writeVerdicts(facts, page);
  page.paragraph(0, "Only looked: nothing was changed or sent. " + timeText(facts.context.now));
  page.blank();
  writeUser(facts, page);
  writeProject(facts, page);
  writeWhen(facts, page);
  writeSite(facts, page);
  writeSupport(facts, page);
  writeCommandLines(facts, page);
  writeSwitches(facts.context, page);
  writeFiles(facts, page);
  writeFindings(findings, page);
  page.blank();
  page.paragraph(0,
                 "What send answers to the program, and whether the main design tool transmits anything, "
                 "cannot be known from here.");
  page.paragraph(
      0, fmt::format("All that this machine keeps about you: {}, {}/vestra-rehearsal-* where you "
                     "rehearsed, and a vestra directory in each project, which vestra-inspect "
                     "list DIR finds.",
                     facts.user.file.path,
                     facts.context.isSwitchedOn("TMPDIR") ? facts.context.variable("TMPDIR") : "/tmp"));
}

}  // namespace vestra::inspect
