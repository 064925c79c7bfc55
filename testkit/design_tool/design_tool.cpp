#include "design_tool/design_tool.h"

#include <algorithm>
#include <filesystem>
#include <memory>
#include <ostream>

#include <fmt/format.h>

#include "design_tool/diagnosis/diagnostic.h"
#include "design_tool/files/input_file.h"
#include "design_tool/files/outbox.h"
#include "design_tool/files/output_place.h"
#include "design_tool/files/pending_file.h"
#include "design_tool/pages/html_page.h"
#include "design_tool/pages/report_record.h"
#include "design_tool/pages/text_report.h"
#include "design_tool/pages/xml_report.h"
#include "design_tool/report/checksum.h"
#include "design_tool/report/suspicions.h"
#include "design_tool/rules/rules.h"
#include "reading/hazard.h"
#include "reading/visible_text.h"
#include "reading/written_items.h"

namespace vestra::design_tool {

using reading::forTerminal;
using reading::WrittenItem;

namespace {

struct Run {
  std::string script;
  Report report;
  std::string rulesText;
  std::vector<Rule> rules;
  std::vector<std::string> warnings;
};

constexpr std::size_t MOST_WARNINGS = 20;

std::vector<std::string> warningLines(const std::string& file, const std::vector<Warning>& warnings) {
  std::vector<std::string> lines;
  for (std::size_t i = 0; i < std::min(warnings.size(), MOST_WARNINGS); ++i) {
    lines.push_back(
        fmt::format("{}:{}: warning: {}", forTerminal(file), warnings[i].line, warnings[i].message));
  }
  if (warnings.size() > MOST_WARNINGS) {
    lines.push_back(
        fmt::format("{}: warning: and {} more", forTerminal(file), warnings.size() - MOST_WARNINGS));
  }
  return lines;
}

void append(std::vector<Warning>& warnings, const std::vector<Warning>& others) {
  warnings.insert(warnings.end(), others.begin(), others.end());
}

Run read(const RunRequest& request, LineObserver observer) {
  Run run;
  run.script = readRegularFile(request.source);
  run.report = evaluateScript(request.source, run.script, {}, observer);
  append(run.report.warnings, checksumWarnings(run.report, run.script, modificationTimeOf(request.source)));
  run.rulesText = readRegularFile(run.report.transmission.wdm);
  run.rules = parseRules(run.report.transmission.wdm, run.rulesText);
  run.warnings = warningLines(request.source, suspicionsAbout(run.report, run.rules));
  return run;
}

void say(std::ostream& out, const std::string& line) { out << "vestra-design-tool: " << line << '\n'; }

std::string counted(std::size_t count, const std::string& what) {
  return fmt::format("{} {}{}", count, what, count == 1 ? "" : "s");
}

void sayWhatWasRead(const RunRequest& request, const Run& run, std::ostream& out) {
  const Transmission& transmission = run.report.transmission;
  say(out,
      fmt::format("read {} from {}", counted(run.report.items.size(), "item"), forTerminal(request.source)));
  say(out, fmt::format("read {} from {}", counted(run.rules.size(), "rule"), forTerminal(transmission.wdm)));
}

std::string fileName(const std::string& path) { return std::filesystem::path(path).filename().string(); }

/// The two reports' places; neither may be a file that the run reads, or the other.
struct Places {
  OutputPlace xml;
  OutputPlace html;
};

[[noreturn]] void failAt(const OutputPlace& place, const std::string& message) {
  throw DiagnosedError({place.path(), 0, message, "", 0, 0});
}

void refuseInputs(const OutputPlace& place, const RunRequest& request, const Run& run) {
  if (place.isSameAs(identityOf(request.source))) {
    failAt(place, "is the script itself");
  }
  if (place.isSameAs(identityOf(run.report.transmission.wdm))) {
    failAt(place, "is the rules file");
  }
}

Places placesFor(const RunRequest& request, const Run& run) {
  const Transmission& transmission = run.report.transmission;
  Places places{OutputPlace(transmission.xml, run.report.vestraDir),
                OutputPlace(transmission.html, run.report.vestraDir)};
  refuseInputs(places.xml, request, run);
  refuseInputs(places.html, request, run);
  if (places.xml.isSameAs(places.html)) {
    failAt(places.html, "is the XML report as well");
  }
  return places;
}

std::unique_ptr<PendingCopy> prepareCopy(const RunRequest& request, const Run& run, const std::string& xml,
                                         const std::string& html) {
  if (request.outbox.empty()) {
    return nullptr;
  }
  const Transmission& transmission = run.report.transmission;
  return Outbox(request.outbox)
      .prepare(productOf(run.report), {{fileName(request.source), run.script},
                                       {fileName(transmission.wdm), run.rulesText},
                                       {fileName(transmission.xml), xml},
                                       {fileName(transmission.html), html},
                                       {"report.json", renderRecord(run.report, run.rules, run.warnings)}});
}

void write(const RunRequest& request, const Run& run, std::ostream& out) {
  const Places places = placesFor(request, run);
  const std::string xml = renderXml(run.report, run.rules);
  const std::string html = renderHtml(run.report, run.rules, request.privacyPage);
  PendingFile xmlFile(places.xml, xml);
  PendingFile htmlFile(places.html, html);
  const std::unique_ptr<PendingCopy> copy = prepareCopy(request, run, xml, html);
  xmlFile.commit();
  htmlFile.commit();
  if (copy) {
    say(out, fmt::format("kept a copy in {}", forTerminal(copy->publish().string())));
  }
  xmlFile.keep();
  htmlFile.keep();
  say(out, "wrote " + forTerminal(places.xml.path()));
  say(out, "wrote " + forTerminal(places.html.path()));
  say(out, fmt::format("report {} is complete; nothing was transmitted", run.report.transmission.clientId));
}

/// What is to be said of single items: hazards, and items that a value has added.
std::vector<Warning> marksOn(const Report& report, const std::vector<WrittenItem>& written) {
  std::vector<Warning> marks = injectedItems(report, written);
  for (const WrittenItem& item : written) {
    if (const std::optional<std::string> hazard = reading::hazardOf(item)) {
      marks.push_back({item.line, *hazard});
    }
  }
  return marks;
}

std::size_t sectionOf(const WrittenItem& item, std::vector<Section>& sections) {
  const auto known = std::find_if(sections.begin(), sections.end(), [&](const Section& section) {
    return section.client == item.client && section.context == item.context;
  });
  if (known != sections.end()) {
    return static_cast<std::size_t>(known - sections.begin());
  }
  sections.push_back({item.client, item.context});
  return sections.size() - 1;
}

/// The items from this line on, as they were written.
void addItemsBehind(std::size_t line, const std::vector<WrittenItem>& written, Report& report) {
  const std::size_t lastRead = report.items.empty() ? 0 : report.items.back().line;
  for (const WrittenItem& item : written) {
    if (item.line >= line && item.line > lastRead) {
      report.items.push_back({sectionOf(item, report.sections), item.key, item.value, item.line});
    }
  }
}

}  // namespace

int showReport(const ShowRequest& request, std::ostream& out, std::ostream& err, LineObserver observer) {
  try {
    const std::string script = readRegularFile(request.script);
    PartialReport evaluated = evaluateAsFarAsPossible(request.script, script, {}, observer);
    const std::vector<WrittenItem> written = reading::itemsWrittenIn(script);
    const std::vector<Warning> marks = marksOn(evaluated.report, written);
    if (evaluated.error) {
      addItemsBehind(evaluated.error->line, written, evaluated.report);
    }
    out << renderText(evaluated.report, marks, evaluated.error.has_value()) << std::flush;
    if (evaluated.error) {
      err << format(*evaluated.error);
    }
    return evaluated.error ? 1 : 0;
  } catch (const DiagnosedError& error) {
    err << format(error.diagnostic());
    return 1;
  }
}

int runDesignTool(const RunRequest& request, std::ostream& out, std::ostream& err, LineObserver observer) {
  try {
    const Run run = read(request, observer);
    for (const std::string& warning : run.warnings) {
      err << warning << '\n';
    }
    sayWhatWasRead(request, run, out);
    write(request, run, out);
    return 0;
  } catch (const DiagnosedError& error) {
    err << format(error.diagnostic());
    return 1;
  }
}

}  // namespace vestra::design_tool
