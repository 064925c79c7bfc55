#include "design_tool/design_tool.h"

#include <algorithm>
#include <ctime>
#include <filesystem>
#include <map>
#include <optional>
#include <ostream>

#include <sys/stat.h>

#include <fmt/format.h>

#include "design_tool/diagnosis/diagnostic.h"
#include "design_tool/files/input_file.h"
#include "design_tool/files/outbox.h"
#include "design_tool/files/output_file.h"
#include "design_tool/pages/html_page.h"
#include "design_tool/pages/report_record.h"
#include "design_tool/pages/text_report.h"
#include "design_tool/pages/xml_report.h"
#include "design_tool/report/suspicions.h"
#include "design_tool/rules/rules.h"
#include "design_tool/script/script_evaluation.h"
#include "reading/hazard.h"
#include "reading/visible_text.h"
#include "reading/written_items.h"

namespace vestra::design_tool {

using reading::forTerminal;
using reading::WrittenItem;

namespace {

constexpr std::size_t MOST_WARNINGS = 20;

struct Run {
  std::string script;
  Report report;
  std::string rulesText;
  std::vector<Rule> rules;
  /// As they are printed.
  std::vector<std::string> warnings;
};

std::vector<std::string> warningLines(const std::string& file, const std::vector<Warning>& warnings) {
  const std::string name = forTerminal(file);
  std::vector<std::string> lines;
  for (std::size_t i = 0; i < std::min(warnings.size(), MOST_WARNINGS); ++i) {
    lines.push_back(fmt::format("{}:{}: warning: {}", name, warnings[i].line, warnings[i].message));
  }
  if (warnings.size() > MOST_WARNINGS) {
    lines.push_back(fmt::format("{}: warning: and {} more", name, warnings.size() - MOST_WARNINGS));
  }
  return lines;
}

std::time_t modificationTimeOf(const std::string& path) {
  struct stat status = {};
  return ::stat(path.c_str(), &status) == 0 ? status.st_mtime : std::time(nullptr);
}

Run read(const std::string& source) {
  Run run;
  run.script = readRegularFile(source);
  run.report = evaluateScript(source, run.script);
  run.rulesText = readRegularFile(run.report.transmission.wdm);
  run.rules = parseRules(run.report.transmission.wdm, run.rulesText);
  run.warnings =
      warningLines(source, suspicionsAbout(run.report, run.rules, run.script, modificationTimeOf(source)));
  return run;
}

void say(std::ostream& out, const std::string& line) { out << "vestra-design-tool: " << line << '\n'; }

std::string counted(std::size_t count, const std::string& what) {
  return fmt::format("{} {}{}", count, what, count == 1 ? "" : "s");
}

std::string fileName(const std::string& path) { return std::filesystem::path(path).filename().string(); }

void checkOutputs(const std::string& source, const Report& report) {
  const std::string& html = report.transmission.html;
  for (const std::string& output : {report.transmission.xml, html}) {
    checkOutput(output, report.vestraDir);
    if (isSameFile(output, source)) {
      throw DiagnosedError(output, "is the script itself");
    }
    if (isSameFile(output, report.transmission.wdm)) {
      throw DiagnosedError(output, "is the rules file");
    }
  }
  if (isSameFile(html, report.transmission.xml)) {
    throw DiagnosedError(html, "is the XML report as well");
  }
}

void write(const std::string& source, const std::string& outbox, const std::string& privacyPage,
           const Run& run, std::ostream& out) {
  const Transmission& transmission = run.report.transmission;
  checkOutputs(source, run.report);
  const std::string xml = renderXml(run.report, run.rules);
  const std::string html = renderHtml(run.report, run.rules, privacyPage);
  const std::optional<Outbox> copies = outbox.empty() ? std::nullopt : std::optional<Outbox>(outbox);
  replaceFile(transmission.xml, xml);
  replaceFile(transmission.html, html);
  if (copies) {
    const auto folder = copies->keep(productOf(run.report),
                                     {{"report.json", renderRecord(run.report, run.rules, run.warnings)},
                                      {fileName(source), run.script},
                                      {fileName(transmission.wdm), run.rulesText},
                                      {fileName(transmission.xml), xml},
                                      {fileName(transmission.html), html}});
    say(out, "kept a copy in " + forTerminal(folder.string()));
  }
  say(out, "wrote " + forTerminal(transmission.xml));
  say(out, "wrote " + forTerminal(transmission.html));
  say(out, fmt::format("report {} is complete; nothing was transmitted", transmission.clientId));
}

/// What the interpreter has read.
std::vector<WrittenItem> itemsOf(const Report& report) {
  std::vector<WrittenItem> items;
  for (const Item& item : report.items) {
    const Section& section = report.sections[item.section];
    items.push_back({section.client, section.context, item.key, item.value, item.line});
  }
  return items;
}

/// The action's status; 1 where it throws an error, which is printed.
template <typename Action>
int diagnosed(std::ostream& err, Action action) {
  try {
    return action();
  } catch (const DiagnosedError& error) {
    err << error.what() << '\n';
    return 1;
  }
}

}  // namespace

int runDesignTool(const std::string& source, const std::string& outbox, const std::string& privacyPage,
                  std::ostream& out, std::ostream& err) {
  return diagnosed(err, [&] {
    const Run run = read(source);
    for (const std::string& warning : run.warnings) {
      err << warning << '\n';
    }
    say(out, fmt::format("read {} from {}", counted(run.report.items.size(), "item"), forTerminal(source)));
    say(out, fmt::format("read {} from {}", counted(run.rules.size(), "rule"),
                         forTerminal(run.report.transmission.wdm)));
    write(source, outbox, privacyPage, run, out);
    return 0;
  });
}

int showReport(const std::string& source, std::ostream& out, std::ostream& err) {
  return diagnosed(err, [&] {
    const std::string script = readRegularFile(source);
    const std::vector<WrittenItem> written = reading::itemsWrittenIn(script);
    std::map<std::size_t, std::string> hazards;
    for (const WrittenItem& item : written) {
      if (const std::optional<std::string> hazard = reading::hazardOf(item)) {
        hazards.emplace(item.line, *hazard);
      }
    }
    try {
      const Report report = evaluateScript(source, script);
      out << fmt::format("Report {}, registration {}\n", report.transmission.clientId,
                         reading::inQuotes(report.transmission.registrationId))
          << renderText(itemsOf(report), hazards);
      return 0;
    } catch (const DiagnosedError&) {
      out << "Corrupt script; its items as they were written:\n"
          << renderText(written, hazards) << std::flush;
      throw;
    }
  });
}

int printRecord(const std::string& source, std::ostream& out, std::ostream& err) {
  return diagnosed(err, [&] {
    const Run run = read(source);
    out << renderRecord(run.report, run.rules, run.warnings);
    return 0;
  });
}

}  // namespace vestra::design_tool
