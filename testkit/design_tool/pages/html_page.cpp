#include "design_tool/pages/html_page.h"

#include <algorithm>
#include <cctype>
#include <string_view>

#include <fmt/format.h>

#include "design_tool/pages/page_style.h"
#include "design_tool/report/sections.h"
#include "reading/visible_text.h"

namespace vestra::design_tool {

using reading::escapedForHtml;
using reading::forTerminal;

namespace {

constexpr std::string_view NOT_APPLICABLE = "not_applicable";
constexpr std::string_view TEST_PREFIX = "VESTRA_TEST_";

bool isFigure(std::string_view text) {
  const std::size_t sign = text.rfind('-', 0) == 0 ? 1 : 0;
  const std::string_view digits = text.substr(sign);
  return !digits.empty() && digits.find_first_not_of("0123456789.,") == std::string_view::npos &&
         digits.find_first_of("0123456789") != std::string_view::npos;
}

std::string valueHtml(const std::string& value) {
  if (value.empty()) {
    return "<span class=\"absent\">empty</span>";
  }
  if (value == NOT_APPLICABLE) {
    return "<span class=\"absent\">not applicable</span>";
  }
  if (reading::isBlank(value)) {
    return reading::namedForHtml(value);
  }
  return escapedForHtml(value);
}

/// A long key may break after each underscore rather than anywhere.
std::string keyHtml(const std::string& key) {
  std::string html;
  for (const char letter : escapedForHtml(key)) {
    html += letter;
    if (letter == '_') {
      html += "<wbr>";
    }
  }
  return html;
}

std::string countOf(const MappedSection& section) {
  const std::size_t items = section.items.size();
  const std::string count = items == 1 ? "1 item" : fmt::format("{} items", items);
  const auto notApplicable = std::count_if(section.items.begin(), section.items.end(),
                                           [](const Item* item) { return item->value == NOT_APPLICABLE; });
  return notApplicable == 0 ? count : fmt::format("{}, {} not applicable", count, notApplicable);
}

std::string asWords(std::string text) {
  std::replace(text.begin(), text.end(), '_', ' ');
  if (!text.empty() && text[0] >= 'a' && text[0] <= 'z') {
    text[0] = static_cast<char>(text[0] - 'a' + 'A');
  }
  return text;
}

/// The last part of the section's path as words: "kelvo\command_line_options" becomes "Command line options".
std::string headingOf(const MappedSection& section) {
  return asWords(section.path().substr(section.path().find_last_of('\\') + 1));
}

std::string titleOrDefault(const Report& report) {
  const std::string title = titleOf(report);
  return title.empty() || reading::isBlank(title) ? "Usage Report" : title;
}

void addHead(std::string& html, const Report& report) {
  html += "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n";
  html +=
      "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; style-src "
      "'unsafe-inline'\">\n";
  html += "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n";
  html += "<meta name=\"color-scheme\" content=\"light dark\">\n";
  html += fmt::format("<title>{}</title>\n<style>\n{}</style>\n</head>\n",
                      escapedForHtml(forTerminal(titleOrDefault(report))), PAGE_STYLE);
}

void addFact(std::string& html, std::string_view name, const std::string& value, const std::string& note) {
  html += fmt::format("<div><dt>{}</dt><dd class=\"value\">{}</dd><dd class=\"note\">{}</dd></div>\n", name,
                      valueHtml(value), note);
}

void addProjectFact(std::string& html, std::string_view name, const Report& report, const std::string& key,
                    const std::string& note) {
  const std::string value = projectValue(report, key);
  if (!value.empty()) {
    addFact(html, name, value, note);
  }
}

void addTestMark(std::string& html, const Report& report) {
  if (report.transmission.registrationId.rfind(TEST_PREFIX, 0) != 0) {
    return;
  }
  html += "<p class=\"test\"><span class=\"chip\">Test report from inside the maker's network</span></p>\n";
}

std::string pathHtml(const std::string& path) {
  return "<span class=\"path\">" + escapedForHtml(path) + "</span>";
}

std::string linkTo(const std::string& path) {
  std::string url = "file://";
  for (const char letter : path) {
    const auto byte = static_cast<unsigned char>(letter);
    const bool isPlain = std::isalnum(byte) != 0 || letter == '/' || letter == '-' || letter == '.' ||
                         letter == '_' || letter == '~';
    url += isPlain ? std::string(1, letter) : fmt::format("%{:02X}", byte);
  }
  return fmt::format(" <a href=\"{}\">What is reported about you</a> tells more.", url);
}

void addAbout(std::string& html, const std::string& privacyPage) {
  html +=
      "<p class=\"about\">Vestra, a part of the program that you ran, has written down what this page shows: "
      "facts about one run, the project and the machine. The page was made by the stand-in design tool, with "
      "which developers test; it has <strong>transmitted nothing</strong>.";
  html += (privacyPage.empty() ? "" : linkTo(privacyPage)) + "</p>\n";
}

std::string installationNote() {
  return "A random number for your home directory, made once and reported each time. It lives until you "
         "reset "
         "it: delete the line that begins with " +
         pathHtml("RandomID=") + " in " + pathHtml("~/.Calvix/Common/2018.2/vestra") + ".";
}

std::string projectNote(const Report& report) {
  return "A number for this project, made at random or supplied by the program, and reported each time. It "
         "lives "
         "until you reset it: delete " +
         pathHtml(report.vestraDir + ".kelvo_vestrra.info") + ".";
}

constexpr const char* REGISTRATION_NOTE =
    "Names the registration of the installed software, as its support library tells it. Vestra does not keep "
    "it; "
    "it lives as long as the registration.";
constexpr const char* ITERATION_NOTE =
    "How many runs have asked for a report in this project, this one included. With a new number of the "
    "project, "
    "it begins again.";

void addOrigin(std::string& html, const Report& report) {
  html += "<section aria-label=\"Origin\">\n<dl class=\"facts\">\n";
  addProjectFact(html, "Generated", report, "date_generated", "When the report was written.");
  addProjectFact(html, "Installation", report, "random_id", installationNote());
  addFact(html, "Registration", report.transmission.registrationId, REGISTRATION_NOTE);
  addProjectFact(html, "Project", report, "project_id", projectNote(report));
  addProjectFact(html, "Project iteration", report, "project_iteration", ITERATION_NOTE);
  addFact(html, "Folder", report.vestraDir, "Where the report and its pages lie.");
  html +=
      "</dl>\n<p class=\"legend\">The label beside a heading names who reports: <span "
      "class=\"chip\">project</span> for the project, the installation and the machine, otherwise the "
      "program. "
      "<span class=\"test\"><span class=\"chip\">no rule</span></span> marks facts to which the rules give "
      "no "
      "place in a report.</p>\n</section>\n";
}

void addEnvironmentList(std::string& html, const MappedSection& section) {
  html += "<dl class=\"environment\">\n";
  for (const Item* item : section.items) {
    html += fmt::format("<div><dt class=\"key\">{}</dt><dd class=\"value\">{}</dd></div>\n",
                        keyHtml(item->key), valueHtml(item->value));
  }
  html += "</dl>\n";
}

void addStatisticsTable(std::string& html, const MappedSection& section) {
  const bool areFigures = std::all_of(section.items.begin(), section.items.end(),
                                      [](const Item* item) { return isFigure(item->value); });
  html += fmt::format("<table class=\"{}\">\n", areFigures ? "statistics figures" : "statistics");
  html += "<thead><tr><th scope=\"col\">Key</th><th scope=\"col\">Value</th></tr></thead>\n<tbody>\n";
  for (const Item* item : section.items) {
    html += fmt::format("<tr><th scope=\"row\" class=\"key\">{}</th><td class=\"value\">{}</td></tr>\n",
                        keyHtml(item->key), valueHtml(item->value));
  }
  html += "</tbody>\n</table>\n";
}

void addSection(std::string& html, const MappedSection& section) {
  html += fmt::format("<section>\n<div class=\"head\"><h2>{}</h2><span class=\"chip\">{}</span>",
                      escapedForHtml(headingOf(section)), escapedForHtml(section.client));
  if (section.rule == nullptr) {
    html += "<span class=\"test\"><span class=\"chip\">no rule</span></span>";
  }
  html += fmt::format("<span class=\"count\">{}</span></div>\n", countOf(section));
  if (section.items.empty()) {
    html += "<p class=\"none\">Nothing was reported here.</p>\n";
  } else if (section.rule != nullptr && section.rule->htmlStyle == HtmlStyle::UserEnvironment) {
    addEnvironmentList(html, section);
  } else {
    addStatisticsTable(html, section);
  }
  html += "</section>\n";
}

}  // namespace

std::string renderHtml(const Report& report, const std::vector<Rule>& rules, const std::string& privacyPage) {
  std::string html;
  addHead(html, report);
  html += fmt::format("<body>\n<main>\n<header class=\"intro\"><h1>{}</h1></header>\n",
                      escapedForHtml(titleOrDefault(report)));
  addTestMark(html, report);
  addAbout(html, privacyPage);
  addOrigin(html, report);
  for (const MappedSection& section : mapSections(report, rules)) {
    addSection(html, section);
  }
  return html + fmt::format(
                    "<footer>Report <span class=\"value\">{}</span>. Written by the stand-in design tool; "
                    "nothing was transmitted.</footer>\n</main>\n</body>\n</html>\n",
                    report.transmission.clientId);
}

}  // namespace vestra::design_tool
