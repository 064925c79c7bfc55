#include "render/text_form.h"

#include <iterator>

#include <fmt/format.h>
#include <boost/algorithm/string/replace.hpp>

#include "facts/times.h"
#include "reading/visible_text.h"

namespace vestra::inspect {
namespace {

constexpr std::size_t TIME_INDENT = 20;
constexpr std::size_t ITEM_INDENT = 24;

/// A member of a document that is a section of the page.
struct Section {
  const char* member;
  const char* heading;
  /// Of a list's elements the member that stands in their row; null for all but the label.
  const char* text = nullptr;
};

constexpr Section SECTIONS[] = {
    {"as", "Rights"},
    {"user", "You"},
    {"project", "This project"},
    {"due", "When", "handed_over"},
    {"site", "Maker's own machine?"},
    {"support", "Support library"},
    {"command_lines", "What the shell will be given (TOOL is the support library's answer)", "text"},
    {"switches", "Switches (none turns reports off: see \"Stop it\" in Vestra's privacy page)"},
    {"files", "Files"},
    {"findings", "Findings (doctor says what they mean)", "says"},
};

std::string textOf(const Json& value) { return value.get<std::string>(); }

bool saysNothing(const Json& value) {
  return value.is_null() || (value.is_string() && textOf(value).empty()) ||
         (value.is_array() && value.empty());
}

std::string labelOf(const std::string& member) {
  return boost::algorithm::replace_all_copy(member, "_", " ");
}

std::string formOf(const Json& value);

/// "path /etc/hosts, state regular"
std::string membersOf(const Json& object, bool hasLabel) {
  std::string text;
  for (auto member = std::next(object.begin(), hasLabel ? 1 : 0); member != object.end(); ++member) {
    if (!saysNothing(*member)) {
      text += (text.empty() ? "" : ", ") + labelOf(member.key()) + " " + formOf(*member);
    }
  }
  return text;
}

std::string formOf(const Json& value) {
  if (value.is_boolean()) {
    return value.get<bool>() ? "yes" : "no";
  }
  if (value.is_object() && value.contains("seconds")) {
    return timeText(value["seconds"]);
  }
  // An identifier.
  if (value.is_object() && value.contains("value") && saysNothing(value["value"])) {
    return "none";
  }
  return value.is_object() ? membersOf(value, false) : value.is_string() ? textOf(value) : value.dump();
}

void writeList(const Json& list, const char* text, Page& page) {
  for (const Json& each : list) {
    page.row(each.is_string() ? "" : textOf(each.front()), each.is_string()  ? textOf(each)
                                                           : text != nullptr ? textOf(each[text])
                                                                             : membersOf(each, true));
  }
}

void writeSection(const Json& value, const Section& section, Page& page) {
  page.heading(section.heading);
  if (saysNothing(value)) {
    page.row("none", "");
  } else if (value.is_array()) {
    writeList(value, section.text, page);
  }
  for (auto member = value.begin(); value.is_object() && member != value.end(); ++member) {
    if (!saysNothing(*member)) {
      page.row(labelOf(member.key()), member->is_array() ? "" : formOf(*member));
      writeList(member->is_array() ? *member : Json(), nullptr, page);
    }
  }
}

void writeVerdicts(const Json& document, Page& page) {
  page.heading(textOf(document["project"]["directory"]));
  for (const Json& each : document["due"]) {
    page.row(textOf(each["product"]), textOf(each["verdict"]));
  }
}

std::string counted(std::size_t number, const std::string& what) {
  return fmt::format("{} {}{}", number, what, number == 1 ? "" : "s");
}

std::string headOf(const Json& rehearsed) {
  const Json& report = rehearsed["report"];
  return fmt::format("vestra-inspect: {} one report{} for {}",
                     rehearsed["outcome"] == "leaked" ? "did not intercept" : "intercepted",
                     report.is_null() ? "" : " of " + textOf(report["product"]),
                     textOf(rehearsed["directory"]));
}

std::string fateOf(const Json& rehearsed) {
  const std::string outcome = textOf(rehearsed["outcome"]);
  return outcome == "reports"   ? "would have been handed over now"
         : outcome == "not_due" ? "not due: would have been written and not handed over"
         : outcome == "nothing" ? "nothing would have been reported"
         : outcome == "leaked"  ? "handed to the stub's design tool, which keeps it"
         : outcome == "throws"
             ? "the program would have got the exception \"" + textOf(rehearsed["exception"]) + "\""
             : "could not be rehearsed: no answer within the time limit";
}

void writeRehearsed(const Json& each, Page& page) {
  page.heading(headOf(each));
  page.paragraph(2, fateOf(each));
  if (!each["report"].is_null()) {
    const Json& report = each["report"];
    page.paragraph(2, fmt::format("number {}; checksum {}; {} items, {} with hazards",
                                  textOf(report["number"]), textOf(report["checksum"]["written"]),
                                  report["count"].dump(), report["hazards"].dump()));
    page.paragraph(2, fmt::format("registration \"{}\"", textOf(report["registration"])));
    page.paragraph(2, "kept in " + textOf(each["folder"]));
  }
  if (!each["command"].is_null()) {
    page.paragraph(2, "the shell would have been given");
    page.paragraph(4, textOf(each["command"]));
  }
  for (const Json& identifier : each["examples"]) {
    page.paragraph(2, fmt::format("{} is an example: the real run will draw another{}", textOf(identifier),
                                  identifier == "project_id" ? ", unless the program gives one" : ""));
  }
}

/// What would show nothing is named.
std::string shown(const std::string& text) {
  return text.empty() ? "\"\"" : reading::isBlank(text) ? reading::namedBytes(text) : text;
}

/// Keys may be long; their values then stand below.
void writeItem(const ReportedItem& item, const Redaction& redaction, Page& page) {
  const reading::WrittenItem& written = item.written;
  const bool isMarked = item.hazard || item.isRepeated || !item.personal.empty();
  page.row((isMarked ? "! " : "  ") + redaction(shown(written.key)),
           item.isIdentifier && redaction.isOn() ? "<" + written.key + ">" : redaction(shown(written.value)));
  if (item.hazard) {
    page.row("", fmt::format("line {}: {}", written.line, *item.hazard));
  }
  if (item.isRepeated) {
    page.row("", "the same key again");
  }
  for (const std::string& what : item.personal) {
    page.row("", "holds " + what);
  }
}

std::string checksumOf(const Json& checksum) {
  return saysNothing(checksum["written"]) ? "there is no checksum: the script ends before it"
         : checksum["hour"].is_null()
             ? fmt::format("checksum {} does not agree: altered afterwards", textOf(checksum["written"]))
             : fmt::format("checksum {} agrees with these items, written in the hour {}",
                           textOf(checksum["written"]), timeText(checksum["hour"]["seconds"]).substr(0, 13));
}

}  // namespace

void writeStatus(const Json& document, Page& page) {
  writeVerdicts(document, page);
  page.paragraph(0, "Only looked: nothing was changed or sent. " + formOf(document["now"]));
  page.blank();
  for (const Section& section : SECTIONS) {
    writeSection(document[section.member], section, page);
  }
  page.blank();
  page.paragraph(0,
                 "What send answers to the program, and whether the main design tool transmits anything, "
                 "cannot be known from here.");
  page.paragraph(0,
                 "All that this machine keeps about you: the settings file, vestra-rehearsal-* in TMPDIR or "
                 "/tmp where you rehearsed, and a vestra directory in each project, which vestra-inspect "
                 "list DIR finds.");
}

void writeDoctor(const Json& document, Page& page) {
  writeVerdicts(document, page);
  std::size_t counts[3] = {};
  for (const Json& finding : document["findings"]) {
    const std::string level = textOf(finding["level"]);
    ++counts[level == "problem" ? 0 : level == "warning" ? 1 : 2];
    page.blank();
    page.level(level, textOf(finding["id"]));
    page.paragraph(2, textOf(finding["says"]) + ".");
    page.paragraph(2, textOf(finding["means"]));
    for (const Json& command : finding["fix"]) {
      page.command(textOf(command));
    }
  }
  page.blank();
  page.paragraph(0, "Rights: " + textOf(document["as"]["rights"]) + ".");
  page.paragraph(0, fmt::format("{}, {}, {}.", counted(counts[0], "problem"), counted(counts[1], "warning"),
                                counted(counts[2], "note")));
  page.paragraph(0,
                 "Not seen from here: what send returned or threw, what the support library answers, whether "
                 "anything was transmitted; refusals by a file server or by SELinux or AppArmor.");
}

void writeList(const Json& document, Page& page) {
  page.heading(textOf(document["verdict"]["text"]));
  page.setTextIndent(TIME_INDENT);
  for (const Json& project : document["projects"]) {
    std::string text = textOf(project["directory"]);
    for (const Json& product : project["products"]) {
      text += (&product == &project["products"].front() ? "; " : ", ") + textOf(product);
    }
    text += "; " + textOf(project["next"]) + "; attempts " + textOf(project["attempts"]);
    for (const Json& problem : project["problems"]) {
      text += "; " + textOf(problem);
    }
    const std::int64_t last = project["last"]["seconds"];
    page.row(last == 0 ? "never" : timeText(last).substr(0, 16), text);
  }
}

void writeRehearsal(const Json& document, Page& page) {
  const Json& reports = document["rehearsed"];
  if (!document["leaked"].empty() || reports.empty()) {
    page.heading("vestra-inspect: " + textOf(document["verdict"]["text"]));
  }
  for (const Json& path : document["leaked"]) {
    page.paragraph(2, textOf(path));
  }
  for (const Json& each : reports) {
    writeRehearsed(each, page);
  }
  for (const Json& each : document["unobserved"]) {
    page.paragraph(2, "not observed: " + textOf(each));
  }
  if (!document["unobserved"].empty()) {
    page.paragraph(2, "what is not observed reports as without a rehearsal");
  }
  if (!reports.empty() && document["leaked"].empty()) {
    page.paragraph(2, "checked: settings and identity file are as before; the day is not used");
  }
  if (reports.size() > 1) {
    page.paragraph(
        2, "each was rehearsed by itself: what an earlier one would have changed is not in a later one");
  }
}

void writeReport(const ReportFacts& report, const PersonFacts& person, const Redaction& redaction,
                 Page& page) {
  const Json head = reportDocument(report, redaction);
  page.paragraph(
      0, "Kept by CALVIX_VESTRA_DEBUG_EXT, not due, or not handed over: the file alone does not tell.");
  page.paragraph(0, checksumOf(head["checksum"]));
  page.paragraph(0, fmt::format("registration \"{}\"", textOf(head["registration"])));
  page.blank();
  page.setTextIndent(ITEM_INDENT);
  std::string context;
  forEachItem(report, person, [&](const ReportedItem& item) {
    if (item.written.context != context) {
      context = item.written.context;
      page.heading(fmt::format("{} ({})", context, item.written.client));
    }
    writeItem(item, redaction, page);
  });
  page.blank();
  page.paragraph(0, fmt::format("{} items; {} reach the tool otherwise than written, or not at all.",
                                report.itemCount, report.hazards.count));
  page.paragraph(0, "The host writes them, and Vestra hands them over as they are.");
}

}  // namespace vestra::inspect
