#include "render/json_text.h"

#include <unistd.h>

#include <array>
#include <cstdint>
#include <ctime>

#include <nlohmann/json.hpp>

#include "handler/command_line.h"
#include "handler/product_profile.h"
#include "handler/site_detection.h"
#include "reading/byte_text.h"
#include "render/answers.h"

namespace vestra::inspect {
namespace {

using Json = nlohmann::ordered_json;

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

  Json text(const std::string& bytes) const { return reading::byteText(redaction(bytes)); }

  /// An identifier; of one that is longer than any, the beginning and how long it is.
  Json secret(const Facts& facts, const std::string& identifier, const char* mark) const {
    constexpr std::size_t longest = 65536;
    if (facts.isRedacted && !identifier.empty()) {
      return mark;
    }
    return reading::byteText(identifier.size() <= longest
                                 ? identifier
                                 : identifier.substr(0, longest) + "... (" +
                                       std::to_string(identifier.size()) + " bytes)");
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
            {"as", {{"uid", geteuid()}, {"home", text(facts.context.variable("HOME"))}}},
            {"verdict", {{"text", text(verdict)}}}};
  }

  Json user(const Facts& facts) const {
    const UserFacts& known = facts.user;
    return {{"random_id", {{"value", secret(facts, known.randomId, "<user-id>")}, {"line", known.line}}},
            {"makes_new", known.makesNew},
            {"keeps_new", known.keepsNew},
            {"settings_file", file(known.file)}};
  }

  Json project(const Facts& facts) const {
    const ProjectFacts& known = facts.project;
    return {{"directory", text(known.directory)},
            {"state", nameOf(known.state)},
            {"project_id", {{"value", secret(facts, known.identity.projectId, "<project-id>")}, {"line", 5}}},
            {"iteration", std::to_string(known.identity.iteration)},
            {"orbelo_flow", known.identity.orbeloFlow},
            {"identity_file", file(known.identityFile)}};
  }

  Json prediction(const Facts& facts, const Prediction& next) const {
    Json json = {{"product", inspect::nameOf(next.product)},
                 {"slot", next.product == Oza::Vestra::KELVO_ALT ? 2 : 1},
                 {"last", timeOf(next.last)},
                 {"due_from", timeOf(next.dueFrom)},
                 {"is_due", next.isDue},
                 {"next_run", inspect::nameOf(next.outcome)},
                 {"verdict", text(verdictOf(facts, next))},
                 {"reason", next.reason},
                 {"deletes_identity", next.deletesIdentity},
                 {"iteration", std::to_string(next.iteration)},
                 {"project_id", next.makesProjectId ? Json() : secret(facts, next.projectId, "<project-id>")},
                 {"random_id", next.makesRandomId ? Json() : secret(facts, next.randomId, "<user-id>")}};
    return json;
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

  Json commandLine(const Facts& facts, Product product) const {
    return {{"product", inspect::nameOf(product)}, {"text", text(commandLineOf(facts, product))}};
  }

  Json reportFile(const Facts& facts, const ReportFile& each) const {
    Json entry = file(each.file);
    entry["role"] = each.role;
    entry["product"] = each.product;
    entry["proves"] = text(whatItProves(facts, each));
    return entry;
  }

  Json finding(const Finding& found) const {
    return {{"id", found.check->id},
            {"level", inspect::nameOf(found.check->level)},
            {"says", text(found.says)},
            {"means", found.check->means},
            {"fix", texts(found.fixes)}};
  }

  Json status(const Facts& facts, const Findings& findings, const std::string& command) const {
    Json document = head(facts, command, verdictOf(facts));
    document["user"] = user(facts);
    document["project"] = project(facts);
    document["due"] =
        listOf(facts.predictions, [&](const Prediction& each) { return prediction(facts, each); });
    document["site"] = site(facts.site);
    document["support"] = support(facts.support);
    document["command_lines"] =
        listOf(facts.products, [&](Product each) { return commandLine(facts, each); });
    document["switches"] = {variable(facts.context, KEEP_VARIABLE),
                            variable(facts.context, INTERNAL_VARIABLE)};
    document["files"] =
        listOf(facts.project.files, [&](const ReportFile& each) { return reportFile(facts, each); });
    document["findings"] = listOf(findings.sorted(), [&](const Finding& each) { return finding(each); });
    return document;
  }

  Json item(const ReportedItem& each) const {
    const reading::WrittenItem& written = each.written;
    return {{"line", written.line},
            {"client", text(written.client)},
            {"context", text(written.context)},
            {"key", text(written.key)},
            {"value",
             each.isIdentifier && redaction.isOn() ? Json("<" + written.key + ">") : text(written.value)},
            {"hazard", each.hazard ? text(*each.hazard) : Json()},
            {"repeated", each.isRepeated},
            {"personal", each.personal}};
  }

  Json report(const ReportFacts& known) const {
    return {{"file", file(known.file)},
            {"product", known.product},
            {"vestra_directory", text(known.directory)},
            {"complete", known.isComplete},
            {"registration", text(known.registration)},
            {"checksum",
             {{"written", text(known.checksum)},
              {"agrees", known.checksumHour.has_value()},
              {"hour", known.checksumHour ? timeOf(*known.checksumHour) : Json()}}},
            {"items", listOf(known.items, [&](const ReportedItem& each) { return item(each); })}};
  }

  Json reports(const Facts& facts, const std::string& verdict) const {
    Json document = head(facts, "report", verdict);
    document["reports"] = listOf(facts.reports, [&](const ReportFacts& each) { return report(each); });
    return document;
  }

  Json rehearsed(const Rehearsed& each) const {
    const bool throws = each.outcome() == std::string("throws");
    return {{"folder", each.folder.empty() ? Json() : text(each.folder)},
            {"directory", text(each.directory)},
            {"outcome", each.outcome()},
            {"exception", throws ? text(each.answer.substr(1)) : Json()},
            {"command", each.command ? text(*each.command) : Json()},
            {"examples", each.examples},
            {"report", each.report ? report(*each.report) : Json()}};
  }

  Json rehearsal(const Rehearsal& known) const {
    Json document = head(known.facts, "rehearse", known.verdict());
    document["status"] = known.status;
    document["leaked"] = texts(known.leaked);
    document["unobserved"] = texts(known.unobserved);
    document["rehearsed"] = listOf(known.reports, [&](const Rehearsed& each) { return rehearsed(each); });
    return document;
  }

  Json listed(const ListedProject& each) const {
    return {{"directory", text(each.directory)},
            {"products", listOf(each.products, [](Product product) { return inspect::nameOf(product); })},
            {"last", timeOf(each.last)},
            {"next", text(each.next)},
            {"attempts", std::to_string(each.attempts)},
            {"problems", each.problems}};
  }

  Json list(const Facts& machine, const ProjectList& known) const {
    Json document = head(machine, "list", verdictOf(known));
    document["projects"] = listOf(known.projects, [&](const ListedProject& each) { return listed(each); });
    document["unreadable"] = known.unreadable;
    return document;
  }

  Json failure(const std::string& command, const std::string& reason) const {
    return {{"schema", "vestra-inspect/1"},
            {"tool", VESTRA_VERSION},
            {"command", command},
            {"verdict", {{"text", text("could not be looked at: " + reason)}}},
            {"error", text(reason)}};
  }
};

std::string textOf(const Json& document) { return document.dump(2, ' ', true) + "\n"; }

}  // namespace

std::string statusDocument(const Facts& facts, const Findings& findings, const std::string& command,
                           const Redaction& redaction) {
  return textOf(Writer{redaction}.status(facts, findings, command));
}

std::string reportsDocument(const Facts& facts, const std::string& verdict, const Redaction& redaction) {
  return textOf(Writer{redaction}.reports(facts, verdict));
}

std::string reportDocument(const ReportFacts& report, const Redaction& redaction) {
  return textOf(Writer{redaction}.report(report));
}

std::string rehearsalDocument(const Rehearsal& rehearsal, const Redaction& redaction) {
  return textOf(Writer{redaction}.rehearsal(rehearsal));
}

std::string listDocument(const Facts& machine, const ProjectList& list, const Redaction& redaction) {
  return textOf(Writer{redaction}.list(machine, list));
}

std::string failureDocument(const std::string& command, const std::string& reason,
                            const Redaction& redaction) {
  return textOf(Writer{redaction}.failure(command, reason));
}

}  // namespace vestra::inspect
