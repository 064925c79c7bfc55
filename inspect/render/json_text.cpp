#include "render/json_text.h"

#include <unistd.h>

#include <ctime>

#include <fmt/format.h>

#include "handler/command_line.h"
#include "handler/product_profile.h"
#include "handler/site_detection.h"
#include "reading/utf8.h"
#include "render/answers.h"

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

std::string hexOf(const std::string& bytes) {
  std::string digits;
  for (const char byte : bytes) {
    digits += fmt::format("{:02x}", static_cast<unsigned char>(byte));
  }
  return digits;
}

const char* nameOf(IdentityState state) {
  constexpr std::array<const char*, 5> names = {"new", "usable", "unreadable", "damaged", "unusable"};
  return names.at(static_cast<std::size_t>(state));
}

const char* nameOf(ElfState state) {
  constexpr std::array<const char*, 4> names = {"chosen", "missing", "wrong_class", "broken"};
  return names.at(static_cast<std::size_t>(state));
}

}  // namespace

Json JsonText::text(const std::string& bytes) const {
  const std::string shown = redaction(bytes);
  return reading::isUtf8(shown) ? Json(shown) : Json{{"hex", hexOf(shown)}};
}

Json JsonText::texts(const std::vector<std::string>& list) const {
  Json json = Json::array();
  for (const std::string& each : list) {
    json.push_back(text(each));
  }
  return json;
}

Json JsonText::file(const LookedFile& looked) const {
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

Json JsonText::head(const Facts& facts, const std::string& command, const std::string& verdict) const {
  return {{"schema", "vestra-inspect/1"},
          {"tool", VESTRA_VERSION},
          {"command", command},
          {"now", timeOf(facts.view.now)},
          {"as", {{"uid", geteuid()}, {"home", text(facts.view.variable("HOME"))}}},
          {"verdict", {{"text", text(verdict)}}}};
}

Json JsonText::user(const Facts& facts) const {
  const UserFacts& known = facts.user;
  return {{"random_id", {{"value", text(known.randomId)}, {"line", known.line}}},
          {"makes_new", known.makesNew},
          {"keeps_new", known.keepsNew},
          {"settings_file", file(known.file)}};
}

Json JsonText::project(const Facts& facts) const {
  const ProjectFacts& known = facts.project;
  return {{"directory", text(known.directory)},
          {"state", nameOf(known.state)},
          {"project_id", {{"value", text(known.identity.projectId)}, {"line", 5}}},
          {"iteration", std::to_string(known.identity.iteration)},
          {"orbelo_flow", known.identity.orbeloFlow},
          {"identity_file", file(known.identityFile)}};
}

Json JsonText::prediction(const Prediction& next) const {
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

Json JsonText::site(const SiteFacts& known) const {
  Json evidence = {{"domain_name", text(known.domainName)}, {"resolver_file_counts", known.usesResolverFile}};
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

Json JsonText::support(const SupportFacts& known) const {
  Json candidates = Json::array();
  const auto add = [&](const Candidate& each, const char* state) {
    candidates.push_back(
        {{"path", text(each.path)}, {"rule", each.rule}, {"state", state}, {"reason", each.reason}});
  };
  for (const Candidate& each : known.search.tried) {
    add(each, nameOf(each.state));
  }
  for (const Candidate& each : known.search.notReached) {
    add(each, "not_reached");
  }
  return {{"candidates", candidates},
          {"chosen", known.search.chosen.empty() ? Json() : text(known.search.chosen)},
          {"needs_missing", texts(known.missingNeeds)},
          {"entry_points_missing", known.missingEntryPoints},
          {"stand_in", known.isStandIn},
          {"answers", nullptr}};
}

Json JsonText::switches(const View& view) const {
  Json list = Json::array();
  for (const char* name : {"CALVIX_VESTRA_DEBUG_EXT", "CALVIX_VESTRA_INTERNAL_TRANSMIT"}) {
    const bool isSet = view.environment.count(name) != 0;
    list.push_back({{"name", name},
                    {"value", isSet ? text(view.variable(name)) : Json()},
                    {"on", view.isSwitchedOn(name)}});
  }
  return list;
}

Json JsonText::finding(const Finding& found) const {
  return {{"id", found.check->id},
          {"level", inspect::nameOf(found.check->level)},
          {"says", text(found.says)},
          {"means", found.check->means},
          {"mend", texts(found.mend)}};
}

Json JsonText::statusOf(const Facts& facts, const Findings& findings, const std::string& verdict,
                        const std::string& command) const {
  Json document = head(facts, command, verdict);
  document["user"] = user(facts);
  document["project"] = project(facts);
  document["due"] = Json::array();
  for (const Prediction& next : facts.predictions) {
    document["due"].push_back(prediction(next));
  }
  document["site"] = site(facts.site);
  document["support"] = support(facts.support);
  document["command_lines"] = Json::array();
  for (const Product product : facts.products) {
    document["command_lines"].push_back(
        {{"product", inspect::nameOf(product)}, {"text", text(commandLineOf(facts, product))}});
  }
  document["switches"] = switches(facts.view);
  document["files"] = Json::array();
  for (const ReportFile& each : facts.project.files) {
    Json entry = file(each.file);
    entry["role"] = each.role;
    entry["product"] = each.product;
    entry["proves"] = text(whatItProves(facts, each));
    document["files"].push_back(entry);
  }
  document["findings"] = Json::array();
  for (const Finding& each : findings.sorted()) {
    document["findings"].push_back(finding(each));
  }
  return document;
}

Json JsonText::item(const ReportedItem& each) const {
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

Json JsonText::reportOf(const ReportFacts& report) const {
  Json items = Json::array();
  for (const ReportedItem& each : report.items) {
    items.push_back(item(each));
  }
  return {{"file", file(report.file)},
          {"product", report.product},
          {"vestra_directory", text(report.directory)},
          {"complete", report.isComplete},
          {"registration", text(report.registration)},
          {"checksum",
           {{"written", text(report.checksum)},
            {"agrees", report.checksumHour.has_value()},
            {"hour", report.checksumHour ? timeOf(*report.checksumHour) : Json()}}},
          {"items", items}};
}

Json JsonText::reportsOf(const Facts& facts, const std::vector<ReportFacts>& reports,
                         const std::string& verdict) const {
  Json document = head(facts, "report", verdict);
  document["reports"] = Json::array();
  for (const ReportFacts& report : reports) {
    document["reports"].push_back(reportOf(report));
  }
  return document;
}

Json JsonText::rehearsed(const Rehearsed& each) const {
  const bool throws = each.outcome() == std::string("throws");
  return {{"folder", text(each.folder)},
          {"directory", each.isCaught() ? Json() : text(each.directory)},
          {"outcome", each.outcome()},
          {"exception", throws ? text(each.answer.substr(1)) : Json()},
          {"command", each.command ? text(*each.command) : Json()},
          {"examples", each.examples},
          {"report", each.report ? reportOf(*each.report) : Json()}};
}

Json JsonText::rehearsalOf(const Rehearsal& rehearsal) const {
  Json document = head(rehearsal.facts, "rehearse", rehearsal.verdict());
  document["status"] = rehearsal.status;
  document["leaked"] = texts(rehearsal.changed);
  document["rehearsed"] = Json::array();
  for (const Rehearsed& each : rehearsal.reports) {
    document["rehearsed"].push_back(rehearsed(each));
  }
  return document;
}

Json JsonText::failure(const std::string& command, const std::string& reason) const {
  return {{"schema", "vestra-inspect/1"},
          {"tool", VESTRA_VERSION},
          {"command", command},
          {"verdict", {{"text", text("could not be looked at: " + reason)}}},
          {"error", text(reason)}};
}

}  // namespace vestra::inspect
