#include "rehearse/rehearsed.h"

#include <algorithm>

#include <fmt/format.h>

#include "handler/product_profile.h"
#include "intercept/fields.h"
#include "intercept/intercept.h"
#include "rehearse/variables.h"
#include "render/json_text.h"

namespace vestra::inspect {
namespace {

std::vector<std::string> examplesIn(const std::string& directory, const View& view) {
  std::vector<std::string> examples;
  if (lookAtProject(view, directory).state == IdentityState::fresh) {
    examples.emplace_back("project_id");
  }
  if (lookAtUser(view).makesNew) {
    examples.emplace_back("random_id");
  }
  return examples;
}

std::optional<ReportFacts> reportIn(const std::string& folder, const PersonFacts& person) {
  for (const Product product : {Oza::Vestra::KELVO, Oza::Vestra::TAVLO}) {
    LookedFile script = readFileAt(folder + "/" + Oza::profileOf(product).script);
    if (script.text) {
      return readReport(std::move(script), person);
    }
  }
  return std::nullopt;
}

/// The real project's path in the place of a working copy's.
std::string withRealProject(const std::string& script, const Place& record) {
  for (int number = 1; const auto report = record.directory.enter(std::to_string(number)); ++number) {
    const std::string copy = fmt::format("{}/{}/project/", record.path, number);
    if (script.rfind(copy, 0) == 0) {
      return report->read(DIRECTORY_FILE).value_or("") + "/" + script.substr(copy.size());
    }
  }
  return script;
}

std::string parentOf(const std::string& path) { return path.substr(0, path.find_last_of('/')); }

/// Makes the folder only for a report that was written.
void keepFiles(const Directory& report, const Place& kept, const std::string& number, Rehearsed& each) {
  std::optional<Directory> folder;
  for (const Product product : {Oza::Vestra::KELVO, Oza::Vestra::TAVLO}) {
    const Oza::ProductProfile& profile = Oza::profileOf(product);
    for (const std::string name : {profile.script, profile.rules, COMMAND_FILE}) {
      const auto text = report.read(name);
      if (!text || (folder && folder->read(name))) {
        continue;
      }
      if (!folder) {
        folder.emplace(kept.directory.make(number, S_IRWXU));
        each.folder = kept.path + "/" + number;
      }
      folder->write(name, *text);
    }
  }
}

Rehearsed readRehearsed(const Directory& report, const std::string& number, const Place& kept,
                        const Place& record, const View& view) {
  const auto noted = [&](const char* name) { return report.read(name).value_or(""); };
  Rehearsed each;
  each.directory = noted(DIRECTORY_FILE);
  each.before = noted(BEFORE_FILE);
  each.answer = noted(ANSWER_FILE);
  each.command = report.read(COMMAND_FILE);
  if (const auto script = report.read(LEAK_FILE)) {
    each.leakedScript = withRealProject(*script, record);
    each.directory = parentOf(parentOf(each.leakedScript));
  }
  keepFiles(report, kept, number, each);
  if (each.folder.empty()) {
    return each;
  }
  each.report = reportIn(each.folder, lookAtPerson(view));
  if (each.report && !each.isLeak()) {
    each.examples = examplesIn(each.directory, view);
  }
  return each;
}

/// For programs: beside the script.
void keepDocument(const Rehearsed& each) {
  if (each.report) {
    Directory(each.folder).write("report.json", reportDocument(*each.report, Redaction()));
  }
}

/// Programs that could not be observed. Those with an environment of their own could: it was
/// completed.
std::vector<std::string> unobservedIn(const Directory& record) {
  const std::string text = record.read(intercept::UNOBSERVED_RECORD).value_or("");
  const std::vector<std::string> fields = intercept::fieldsIn(text);
  std::vector<std::string> phrases;
  for (std::size_t i = 0; i + 2 <= fields.size(); i += 2) {
    if (fields[i + 1] != intercept::OWN_ENVIRONMENT) {
      phrases.push_back(fields[i] + " " + fields[i + 1]);
    }
  }
  return phrases;
}

std::string headOf(const Rehearsed& each) {
  return fmt::format("{} one report{} for {}", each.isLeak() ? "did not intercept" : "intercepted",
                     each.report ? " of " + each.report->product : "", each.directory);
}

std::string fateOf(const Rehearsed& each) {
  const std::string outcome = each.outcome();
  return outcome == "reports"   ? "would have been handed over now"
         : outcome == "not_due" ? "not due: would have been written and not handed over"
         : outcome == "nothing" ? "nothing would have been reported"
         : outcome == "throws"  ? "the program would have got the exception \"" + each.answer.substr(1) + "\""
                                : "could not be rehearsed: no answer within the time limit";
}

void writeReportLines(const Rehearsed& each, Page& page) {
  const ReportFacts& report = *each.report;
  page.paragraph(2, fmt::format("number {}; checksum {}; {} items, {} with hazards",
                                report.projectFact("project_iteration"), report.checksum, report.items.size(),
                                report.hazardCount()));
  page.paragraph(2, fmt::format("registration \"{}\"", report.registration));
  if (each.command) {
    page.paragraph(2, "the shell would have been given");
    page.paragraph(4, *each.command);
  }
}

void writeRehearsed(const Rehearsed& each, Page& page) {
  page.verdict("vestra-inspect: " + headOf(each));
  if (!each.isLeak()) {
    page.paragraph(2, fateOf(each));
  }
  if (each.report) {
    writeReportLines(each, page);
    page.paragraph(2, "kept in " + each.folder);
  }
  for (const std::string& identifier : each.examples) {
    page.paragraph(2, fmt::format("{} is an example: the real run will draw another{}", identifier,
                                  identifier == "project_id" ? ", unless the program gives one" : ""));
  }
}

void writeUnobserved(const Rehearsal& rehearsal, Page& page) {
  for (const std::string& each : rehearsal.unobserved) {
    page.paragraph(2, "not observed: " + each);
  }
  if (!rehearsal.unobserved.empty()) {
    page.paragraph(2, "what is not observed reports as ever");
  }
}

}  // namespace

const char* Rehearsed::outcome() const {
  if (isLeak() || answer.empty()) {
    return isLeak() ? "leaked" : "unknown";
  }
  if (answer == "f") {
    return report ? "not_due" : "nothing";
  }
  return answer == "t" ? "reports" : "throws";
}

bool Rehearsal::isCertain() const {
  return leaked.empty() &&
         std::none_of(reports.begin(), reports.end(), [](const Rehearsed& each) { return each.isUnknown(); });
}

std::string Rehearsal::verdict() const {
  if (!leaked.empty()) {
    return "LEAKED: not every report was intercepted";
  }
  return reports.empty() ? "no call of send was intercepted; a process without the rehearsal's environment "
                           "would have reported"
                         : headOf(reports.front());
}

Rehearsal readRehearsal(const Place& kept, const Place& record, const View& view) {
  Rehearsal rehearsal;
  for (int number = 1; const auto report = record.directory.enter(std::to_string(number)); ++number) {
    rehearsal.reports.push_back(readRehearsed(*report, std::to_string(number), kept, record, view));
  }
  rehearsal.unobserved = unobservedIn(record.directory);
  rehearsal.facts = lookAtAll(
      view, rehearsal.reports.empty() ? view.currentDirectory : rehearsal.reports.front().directory, {});
  for (const Rehearsed& each : rehearsal.reports) {
    keepDocument(each);
    if (each.report) {
      rehearsal.facts.reports.push_back(*each.report);
    }
    if (each.isLeak()) {
      rehearsal.leaked.push_back(each.leakedScript);
    }
  }
  return rehearsal;
}

void writeRehearsal(const Rehearsal& rehearsal, Page& page) {
  if (!rehearsal.leaked.empty() || rehearsal.reports.empty()) {
    page.verdict("vestra-inspect: " + rehearsal.verdict());
  }
  for (const std::string& path : rehearsal.leaked) {
    page.paragraph(2, path);
  }
  for (const Rehearsed& each : rehearsal.reports) {
    writeRehearsed(each, page);
  }
  writeUnobserved(rehearsal, page);
  if (!rehearsal.reports.empty() && rehearsal.leaked.empty()) {
    page.paragraph(2, "checked: settings and identity file are as before; the day is not used");
  }
  if (rehearsal.reports.size() > 1) {
    page.paragraph(
        2, "each was rehearsed by itself: what an earlier one would have changed is not in a later one");
  }
}

}  // namespace vestra::inspect
