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
  constexpr std::array<const char*, 5> names = {"new", "usable", "unreadable", "damaged", "unusable"};
  return names.at(static_cast<std::size_t>(state));
}

const char* nameOf(ElfState state) {
  constexpr std::array<const char*, 4> names = {"chosen", "missing", "wrong_class", "broken"};
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

  Json texts(const std::vector<std::string>& list) const {
    return listOf(list, [&](const std::string& each) { return text(each); });
  }

  Json file(const LookedFile& looked) const {
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
            {"now", timeOf(facts.view.now)},
            {"as", {{"uid", geteuid()}, {"home", text(facts.view.variable("HOME"))}}},
            {"verdict", {{"text", text(verdict)}}}};
  }

  Json user(const Facts& facts) const {
    const UserFacts& known = facts.user;
    return {{"random_id", {{"value", text(known.randomId)}, {"line", known.line}}},
            {"makes_new", known.makesNew},
            {"keeps_new", known.keepsNew},
            {"settings_file", file(known.file)}};
  }

  Json project(const Facts& facts) const {
    const ProjectFacts& known = facts.project;
    return {{"directory", text(known.directory)},
            {"state", nameOf(known.state)},
            {"project_id", {{"value", text(known.identity.projectId)}, {"line", 5}}},
            {"iteration", std::to_string(known.identity.iteration)},
            {"orbelo_flow", known.identity.orbeloFlow},
            {"identity_file", file(known.identityFile)}};
  }

  Json prediction(const Prediction& next) const {
    Json json = {{"product", inspect::nameOf(next.product)},
                 {"slot", next.product == Oza::Vestra::KELVO_ALT ? 2 : 1},
                 {"last", timeOf(next.last)},
                 {"due_from", timeOf(next.dueFrom)},
                 {"is_due", next.isDue},
                 {"next_run", inspect::nameOf(next.outcome)},
                 {"reason", next.reason},
                 {"deletes_identity", next.deletesIdentity},
                 {"iteration", std::to_string(next.iteration)},
                 {"project_id", next.makesProjectId ? Json() : text(next.projectId)},
                 {"random_id", next.makesRandomId ? Json() : text(next.randomId)}};
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

  Json candidate(const Candidate& each, const char* state) const {
    return {{"path", text(each.path)}, {"rule", each.rule}, {"state", state}, {"reason", each.reason}};
  }

  Json support(const SupportFacts& known) const {
    Json candidates = listOf(known.search.tried,
                             [&](const Candidate& each) { return candidate(each, nameOf(each.state)); });
    for (const Candidate& each : known.search.notReached) {
      candidates.push_back(candidate(each, "not_reached"));
    }
    return {{"candidates", candidates},
            {"chosen", known.search.chosen.empty() ? Json() : text(known.search.chosen)},
            {"needs_missing", texts(known.missingNeeds)},
            {"entry_points_missing", known.missingEntryPoints},
            {"stand_in", known.isStandIn},
            {"answers", nullptr}};
  }

  Json variable(const View& view, const char* name) const {
    const bool isSet = view.environment.count(name) != 0;
    return {{"name", name},
            {"value", isSet ? text(view.variable(name)) : Json()},
            {"on", view.isSwitchedOn(name)}};
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
            {"mend", texts(found.mend)}};
  }

  Json status(const Facts& facts, const Findings& findings, const std::string& command) const {
    Json document = head(facts, command, verdictOf(facts));
    document["user"] = user(facts);
    document["project"] = project(facts);
    document["due"] = listOf(facts.predictions, [&](const Prediction& each) { return prediction(each); });
    document["site"] = site(facts.site);
    document["support"] = support(facts.support);
    document["command_lines"] =
        listOf(facts.products, [&](Product each) { return commandLine(facts, each); });
    document["switches"] = {variable(facts.view, KEEP_VARIABLE), variable(facts.view, INTERNAL_VARIABLE)};
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
            {"value", text(written.value)},
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

  Json failure(const std::string& command, const std::string& reason) const {
    return {{"schema", "vestra-inspect/1"},
            {"tool", VESTRA_VERSION},
            {"command", command},
            {"verdict", {{"text", text("could not be looked at: " + reason)}}},
            {"error", text(reason)}};
  }
};

std::string textOf(const Json& document) { return document.dump(2) + "\n"; }

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

std::string failureDocument(const std::string& command, const std::string& reason,
                            const Redaction& redaction) {
  return textOf(Writer{redaction}.failure(command, reason));
}

}  // namespace vestra::inspect
