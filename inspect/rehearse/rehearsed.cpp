#include "rehearse/rehearsed.h"

#include <algorithm>
#include <fstream>

#include <fmt/format.h>

#include "handler/product_profile.h"
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

Rehearsed readRehearsed(const std::string& folder, const View& view) {
  const auto noted = [&](const char* name) { return readFileAt(folder + "/" + name).text; };
  Rehearsed each{folder, noted("directory").value_or(""), noted("answer").value_or(""), noted("command"), {},
                 {}};
  each.report = reportIn(folder, lookAtPerson(view));
  if (each.report && !each.isCaught()) {
    each.examples = examplesIn(each.directory, view);
  }
  return each;
}

/// For programs: beside the script.
void keepDocument(const Rehearsed& each) {
  if (each.report) {
    std::ofstream(each.folder + "/report.json") << reportDocument(*each.report, Redaction());
  }
}

std::string headOf(const Rehearsed& each) {
  return each.isCaught() ? "caught a report on its way to the tool"
                         : fmt::format("held back one report{} for {}",
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
  if (!each.isCaught()) {
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

}  // namespace

const char* Rehearsed::outcome() const {
  if (isCaught() || answer.empty()) {
    return isCaught() ? "caught" : "unknown";
  }
  if (answer == "f") {
    return report ? "not_due" : "nothing";
  }
  return answer == "t" ? "reports" : "throws";
}

bool Rehearsal::isCertain() const {
  return changed.empty() &&
         std::none_of(reports.begin(), reports.end(), [](const Rehearsed& each) { return each.isUnknown(); });
}

std::string Rehearsal::verdict() const {
  if (!changed.empty()) {
    return "LEAKED: your program reported for real";
  }
  return reports.empty() ? "the program asked for no report" : headOf(reports.front());
}

Rehearsal readRehearsal(const std::string& directory, const View& view) {
  Rehearsal rehearsal;
  for (int number = 1; lookAt(fmt::format("{}/{}", directory, number)).exists(); ++number) {
    rehearsal.reports.push_back(readRehearsed(fmt::format("{}/{}", directory, number), view));
  }
  const bool isNamed = !rehearsal.reports.empty() && !rehearsal.reports.front().isCaught();
  rehearsal.facts =
      lookAtAll(view, isNamed ? rehearsal.reports.front().directory : view.currentDirectory, {});
  for (const Rehearsed& each : rehearsal.reports) {
    keepDocument(each);
    if (each.report) {
      rehearsal.facts.reports.push_back(*each.report);
    }
  }
  return rehearsal;
}

void writeRehearsal(const Rehearsal& rehearsal, Page& page) {
  for (const std::string& path : rehearsal.changed) {
    page.verdict(fmt::format("{}, {} has changed", rehearsal.verdict(), path));
  }
  for (const Rehearsed& each : rehearsal.reports) {
    writeRehearsed(each, page);
  }
  if (rehearsal.reports.empty() && rehearsal.changed.empty()) {
    page.verdict("vestra-inspect: " + rehearsal.verdict());
  } else if (rehearsal.changed.empty()) {
    page.paragraph(2, "checked: settings and identity file are as before; the day is not used");
  }
  if (rehearsal.reports.size() > 1) {
    page.paragraph(
        2, "each was rehearsed by itself: what an earlier one would have changed is not in a later one");
  }
}

}  // namespace vestra::inspect
