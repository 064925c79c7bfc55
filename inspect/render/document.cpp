#include "render/document.h"

#include <unistd.h>

#include <array>
#include <cstdint>
#include <ctime>

#include <fmt/format.h>

#include "facts/times.h"
#include "handler/command_line.h"
#include "handler/product_profile.h"
#include "handler/site_detection.h"
#include "reading/byte_text.h"
#include "reading/visible_text.h"

namespace vestra::inspect {
namespace {

Json timeOf(std::int64_t seconds) {
  const auto time = static_cast<std::time_t>(seconds);
  std::tm utc{};
  char text[64] = "";
  if (gmtime_r(&time, &utc) != nullptr) {
    std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%SZ", &utc);
  }
  return {{"seconds", seconds}, {"text", text}};
}

const char* nameOf(IdentityState state) {
  constexpr std::array<const char*, 6> names = {"new",     "usable",   "unreadable",
                                                "corrupt", "unusable", "unknown"};
  return names.at(static_cast<std::size_t>(state));
}

/// Whose permissions the kernel was asked about.
std::string whoseRights(const Facts& facts) {
  const std::string tested = fmt::format("those of user {}{}", geteuid(), geteuid() == 0 ? " (root)" : "");
  const FileSnapshot home = lookAt(facts.context.variable("HOME"));
  return home.exists() && home.owner != geteuid()
             ? fmt::format("{} were tested; the home is user {}'s, and --as tests that user's", tested,
                           home.owner)
             : tested + " were tested";
}

/// What the shell will be given; "TOOL" for the main design tool, which only the support library can name.
std::string commandLineOf(const Facts& facts, Product product) {
  const std::string redirection =
      product == Oza::Vestra::TAVLO ? Oza::redirectionTo(facts.project.pathOf(Oza::LOG_FILE)) : "";
  return Oza::commandLine("TOOL", facts.project.pathOf(Oza::profileOf(product).script), redirection);
}

/// What the identity file says of the last report, and the design tool's copy where it says nothing.
std::string handedOver(const Facts& facts, const Prediction& next) {
  const ReportFile* xml = facts.project.find("xml", Oza::profileOf(next.product).name);
  return next.last != 0   ? "last handed over " + timeText(next.last)
         : xml == nullptr ? "no report is recorded as handed over"
                          : fmt::format("no report is recorded as handed over; xml of {} lies beside it",
                                        timeText(xml->file.modified));
}

std::string scriptProof(const Facts& facts, const ReportFile& file) {
  const ReportFacts* report = facts.reportOf(file.product);
  if (report == nullptr) {
    return "cannot be read";
  }
  const bool isNewer = file.file.isYoungerThan(facts.project.identity.lastSendTimeDefault);
  return fmt::format(
      "report number {}; {}", reading::forTerminal(report->projectFact("project_iteration")),
      isNewer ? "was not due" : "kept, or the run did not end: whether it was handed over cannot be told");
}

/// What a file's being there tells, and what it does not.
std::string whatItProves(const Facts& facts, const ReportFile& file) {
  const std::int64_t last = facts.project.identity.lastSendTimeDefault;
  return file.role == "script"  ? scriptProof(facts, file)
         : file.role == "rules" ? "the layout of that report"
         : file.role == "log"   ? "the tool's whole output of the last run for TAVLO"
         : last != 0 && file.file.modified >= last
             ? "the tool came as far as writing it after the last report"
             : "from a report before the last one";
}

template <typename List, typename Write>
Json listOf(const List& list, Write write) {
  Json json = Json::array();
  for (const auto& each : list) {
    json.push_back(write(each));
  }
  return json;
}

/// Everything in a document that is not fixed goes through the redaction.
struct Writer {
  const Redaction& redaction;

  Json text(const std::string& bytes) const { return redaction(bytes); }

  /// An identifier; of one that is longer than any, the beginning and how long it is.
  Json secret(const std::string& identifier, const char* mark) const {
    constexpr std::size_t longest = 65536;
    return redaction.isOn() && !identifier.empty() ? mark
           : identifier.size() <= longest
               ? identifier
               : fmt::format("{}... ({} bytes)", identifier.substr(0, longest), identifier.size());
  }

  Json texts(const std::vector<std::string>& list) const {
    return listOf(list, [&](const std::string& each) { return text(each); });
  }

  Json file(const FileSnapshot& looked) const {
    Json json = {{"path", text(looked.path)}, {"state", inspect::nameOf(looked.kind)}};
    if (looked.link) {
      json["link"] = text(*looked.link);
    }
    if (looked.exists()) {
      json["mode"] = modeText(looked.mode);
      json["size"] = looked.size;
      json["modified"] = timeOf(looked.modified);
    }
    return json;
  }

  Json head(const Facts& facts, const std::string& command, const std::string& verdict) const {
    return {{"schema", "vestra-inspect/1"},
            {"tool", VESTRA_VERSION},
            {"command", command},
            {"now", timeOf(facts.context.now)},
            {"as",
             {{"uid", geteuid()},
              {"home", text(facts.context.variable("HOME"))},
              {"rights", text(whoseRights(facts))}}},
            {"verdict", {{"text", text(verdict)}}}};
  }

  Json user(const UserFacts& known) const {
    return {{"random_id", {{"value", secret(known.randomId, "<user-id>")}, {"line", known.line}}},
            {"makes_new", known.makesNew},
            {"keeps_new", known.keepsNew},
            {"settings_file", file(known.file)}};
  }

  Json project(const ProjectFacts& known) const {
    return {{"directory", text(known.directory)},
            {"state", nameOf(known.state)},
            {"project_id", {{"value", secret(known.identity.projectId, "<project-id>")}, {"line", 5}}},
            {"iteration", std::to_string(known.identity.iteration)},
            {"orbelo_flow", known.identity.orbeloFlow},
            {"identity_file", file(known.identityFile)}};
  }

  Json prediction(const Facts& facts, const Prediction& next) const {
    return {{"product", inspect::nameOf(next.product)},
            {"slot", next.product == Oza::Vestra::KELVO_ALT ? 2 : 1},
            {"last", timeOf(next.last)},
            {"handed_over", handedOver(facts, next)},
            {"due_from", timeOf(next.dueFrom)},
            {"is_due", next.isDue},
            {"next_run", inspect::nameOf(next.outcome)},
            {"verdict", text(verdictOf(facts, next))},
            {"reason", next.reason},
            {"deletes_identity", next.deletesIdentity},
            {"iteration", std::to_string(next.iteration)},
            {"project_id", next.makesProjectId ? Json() : secret(next.projectId, "<project-id>")},
            {"random_id", next.makesRandomId ? Json() : secret(next.randomId, "<user-id>")}};
  }

  Json site(const SiteFacts& known) const {
    Json evidence = {{"domain_name", text(known.domainName)},
                     {"resolver_file_counts", known.usesResolverFile}};
    if (known.line != 0) {
      evidence["line"] = known.line;
      evidence["column"] = known.column;
      evidence["text"] = text(known.lineText);
    }
    return {{"internal", known.internal},
            {"internal_without_override", known.internalWithoutOverride},
            {"override", known.overrideIsOn},
            {"maker_domain", Oza::makerDomain()},
            {"evidence", evidence}};
  }

  Json support(const SupportFacts& known) const {
    return {{"state", inspect::nameOf(known.state)},
            {"chosen", known.path.empty() ? Json() : text(known.path)},
            {"reason", text(known.reason)},
            {"tried", texts(known.tried)},
            {"entry_points_missing", known.missingEntryPoints},
            {"stand_in", known.isStandIn},
            {"answers", nullptr}};
  }

  Json variable(const HostContext& context, const char* name) const {
    const bool isSet = context.environment.count(name) != 0;
    return {{"name", name},
            {"value", isSet ? text(context.variable(name)) : Json()},
            {"on", context.isSwitchedOn(name)}};
  }

  Json reportFile(const Facts& facts, const ReportFile& each) const {
    Json entry = {
        {"role", each.role}, {"product", each.product}, {"proves", text(whatItProves(facts, each))}};
    entry.update(file(each.file));
    return entry;
  }

  Json finding(const Finding& found) const {
    return {{"id", found.check->id},
            {"level", inspect::nameOf(found.check->level)},
            {"says", text(found.says)},
            {"means", found.check->means},
            {"fix", texts(found.fixes)}};
  }

  Json item(const ReportedItem& each) const {
    const reading::WrittenItem& written = each.written;
    const bool isSecret = each.isIdentifier && redaction.isOn();
    Json json;
    json["line"] = written.line;
    json["client"] = written.client;
    json["context"] = text(written.context);
    json["key"] = text(written.key);
    json["value"] = isSecret ? Json("<" + written.key + ">") : text(written.value);
    json["hazard"] = each.hazard ? text(*each.hazard) : Json();
    json["repeated"] = each.isRepeated;
    json["personal"] = each.personal;
    return json;
  }

  Json report(const ReportFacts& known) const {
    return {{"file", file(known.file)},
            {"product", known.product},
            {"number", text(known.projectFact("project_iteration"))},
            {"vestra_directory", text(known.directory)},
            {"complete", known.isComplete},
            {"registration", text(known.registration)},
            {"checksum",
             {{"written", text(known.checksum)},
              {"agrees", known.checksumHour.has_value()},
              {"hour", known.checksumHour ? timeOf(*known.checksumHour) : Json()}}},
            {"count", known.itemCount},
            {"hazards", known.hazards.count}};
  }

  Json rehearsedReport(const ReportFacts& known, const PersonFacts& person) const {
    Json json = report(known);
    json["items"] = Json::array();
    forEachItem(known, person, [&](const ReportedItem& each) { json["items"].push_back(item(each)); });
    return json;
  }

  Json rehearsed(const Rehearsed& each, const PersonFacts& person) const {
    const bool throws = each.outcome() == std::string("throws");
    return {{"folder", each.folder.empty() ? Json() : text(each.folder)},
            {"directory", text(each.directory)},
            {"outcome", each.outcome()},
            {"exception", throws ? text(each.answer.substr(1)) : Json()},
            {"command", each.command ? text(*each.command) : Json()},
            {"examples", each.examples},
            {"report", each.report ? rehearsedReport(*each.report, person) : Json()}};
  }

  Json listed(const ListedProject& each) const {
    return {{"directory", text(each.directory)},
            {"products", listOf(each.products, [](Product product) { return inspect::nameOf(product); })},
            {"last", timeOf(each.last)},
            {"next", text(each.next)},
            {"attempts", std::to_string(each.attempts)},
            {"problems", each.problems}};
  }
};

std::string verdictOf(const Facts& facts) {
  std::string verdict = facts.project.directory + ":";
  for (const Prediction& next : facts.predictions) {
    verdict += fmt::format("{} {} {}", verdict.back() == ':' ? "" : ";", inspect::nameOf(next.product),
                           inspect::verdictOf(facts, next));
  }
  return verdict;
}

std::string verdictOf(const ProjectList& list) {
  return fmt::format("{} project{}", list.projects.size(), list.projects.size() == 1 ? "" : "s") +
         (list.unreadable == 0   ? ""
          : list.unreadable == 1 ? "; 1 directory could not be read"
                                 : fmt::format("; {} directories could not be read", list.unreadable));
}

void writeBytes(Json& json) {
  if (json.is_string()) {
    json = reading::byteText(json.get_ref<const std::string&>());
  } else if (json.is_structured()) {
    for (Json& each : json) {
      writeBytes(each);
    }
  }
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

Json statusDocument(const Facts& facts, const Findings& findings, const std::string& command,
                    const Redaction& redaction) {
  const Writer writer{redaction};
  Json document = writer.head(facts, command, verdictOf(facts));
  document["user"] = writer.user(facts.user);
  document["project"] = writer.project(facts.project);
  document["due"] =
      listOf(facts.predictions, [&](const Prediction& each) { return writer.prediction(facts, each); });
  document["site"] = writer.site(facts.site);
  document["support"] = writer.support(facts.support);
  document["command_lines"] = listOf(facts.products, [&](Product each) {
    return Json{{"product", inspect::nameOf(each)}, {"text", writer.text(commandLineOf(facts, each))}};
  });
  document["switches"] = {writer.variable(facts.context, KEEP_VARIABLE),
                          writer.variable(facts.context, INTERNAL_VARIABLE)};
  document["files"] =
      listOf(facts.project.files, [&](const ReportFile& each) { return writer.reportFile(facts, each); });
  document["findings"] = listOf(findings.sorted(), [&](const Finding& each) { return writer.finding(each); });
  return document;
}

Json rehearsalDocument(const Rehearsal& rehearsal, const Redaction& redaction) {
  const Writer writer{redaction};
  Json document = writer.head(rehearsal.facts, "rehearse", rehearsal.verdict());
  document["status"] = rehearsal.status;
  document["leaked"] = writer.texts(rehearsal.leaked);
  document["unobserved"] = writer.texts(rehearsal.unobserved);
  document["rehearsed"] = listOf(rehearsal.reports, [&](const Rehearsed& each) {
    return writer.rehearsed(each, rehearsal.facts.person);
  });
  return document;
}

Json listDocument(const Facts& machine, const ProjectList& list, const Redaction& redaction) {
  const Writer writer{redaction};
  Json document = writer.head(machine, "list", verdictOf(list));
  document["projects"] =
      listOf(list.projects, [&](const ListedProject& each) { return writer.listed(each); });
  document["unreadable"] = list.unreadable;
  return document;
}

Json failureDocument(const std::string& command, const std::string& reason, const Redaction& redaction) {
  const Writer writer{redaction};
  return {{"schema", "vestra-inspect/1"},
          {"tool", VESTRA_VERSION},
          {"command", command},
          {"verdict", {{"text", writer.text("could not be looked at: " + reason)}}},
          {"error", writer.text(reason)}};
}

Json reportsDocument(const Facts& facts, const Redaction& redaction) {
  const std::string none = facts.project.directory +
                           ": no report lies here. One stays after a run that was not due, or while "
                           "CALVIX_VESTRA_DEBUG_EXT is set";
  const auto verdict = [](const ReportFacts& report) {
    return fmt::format("{}: number {} of {}, written {}{}", report.file.path,
                       report.projectFact("project_iteration"), report.product,
                       timeText(report.file.modified), report.isComplete ? "" : "; cut");
  };
  return Writer{redaction}.head(facts, "report", facts.reports.empty() ? none : verdict(facts.reports[0]));
}

Json reportDocument(const ReportFacts& report, const Redaction& redaction) {
  return Writer{redaction}.report(report);
}

Json itemDocument(const ReportedItem& item, const Redaction& redaction) {
  return Writer{redaction}.item(item);
}

std::string dumped(Json document, int indent) {
  try {
    return document.dump(indent, ' ', true);
  } catch (const Json::type_error&) {
    writeBytes(document);
    return document.dump(indent, ' ', true);
  }
}

}  // namespace vestra::inspect
