#include "rehearse/rehearsed.h"

#include <algorithm>

#include <fmt/format.h>

#include "handler/product_profile.h"
#include "intercept/fields.h"
#include "intercept/intercept.h"
#include "rehearse/variables.h"

namespace vestra::inspect {
namespace {

std::vector<std::string> examplesIn(const std::string& directory, const HostContext& context) {
  std::vector<std::string> examples;
  if (lookAtProject(context, directory).state == IdentityState::fresh) {
    examples.emplace_back("project_id");
  }
  if (lookAtUser(context).makesNew) {
    examples.emplace_back("random_id");
  }
  return examples;
}

std::optional<ReportFacts> reportIn(const std::string& folder, const PersonFacts& person) {
  for (const Product product : {Oza::Vestra::KELVO, Oza::Vestra::TAVLO}) {
    FileSnapshot script = readFileAt(folder + "/" + Oza::profileOf(product).script);
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
                        const Place& record, const HostContext& context) {
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
  each.report = reportIn(each.folder, lookAtPerson(context));
  if (each.report && !each.isLeak()) {
    each.examples = examplesIn(each.directory, context);
  }
  return each;
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

Rehearsal readRehearsal(const Place& kept, const Place& record, const HostContext& context) {
  Rehearsal rehearsal;
  for (int number = 1; const auto report = record.directory.enter(std::to_string(number)); ++number) {
    rehearsal.reports.push_back(readRehearsed(*report, std::to_string(number), kept, record, context));
  }
  rehearsal.unobserved = unobservedIn(record.directory);
  rehearsal.facts = lookAtMachine(context);
  lookInto(rehearsal.reports.empty() ? context.currentDirectory : rehearsal.reports.front().directory, {},
           rehearsal.facts);
  for (const Rehearsed& each : rehearsal.reports) {
    if (each.report) {
      rehearsal.facts.reports.push_back(*each.report);
    }
    if (each.isLeak()) {
      rehearsal.leaked.push_back(each.leakedScript);
    }
  }
  return rehearsal;
}

}  // namespace vestra::inspect
