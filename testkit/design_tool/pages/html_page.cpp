#include "design_tool/pages/html_page.h"

#include <algorithm>
#include <string_view>

#include <fmt/format.h>

#include "design_tool/pages/intro.h"
#include "design_tool/pages/page_style.h"
#include "design_tool/report/sections.h"
#include "reading/html_text.h"

namespace vestra::design_tool {

using reading::escapedForHtml;

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

/// "kelvo\command_line_options" is read as "Command line options": the last part of the path, as words.
std::string headingOf(const std::string& map) {
  const std::size_t lastSeparator = map.find_last_of('\\');
  std::string words = lastSeparator == std::string::npos ? map : map.substr(lastSeparator + 1);
  std::replace(words.begin(), words.end(), '_', ' ');
  if (!words.empty() && words[0] >= 'a' && words[0] <= 'z') {
    words[0] = static_cast<char>(words[0] - 'a' + 'A');
  }
  return words;
}

std::string countOf(std::size_t items) { return items == 1 ? "1 item" : fmt::format("{} items", items); }

void addHead(std::string& html, const Report& report) {
  html += "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n";
  html +=
      "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; style-src "
      "'unsafe-inline'\">\n";
  html += "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n";
  html += "<meta name=\"color-scheme\" content=\"light dark\">\n";
  html += fmt::format("<title>{}</title>\n<style>\n{}</style>\n</head>\n",
                      escapedForHtml(titleOf(report.transmission.intro)), PAGE_STYLE);
}

void addFact(std::string& html, std::string_view name, const std::string& value) {
  html += fmt::format("<div><dt>{}</dt><dd class=\"value\">{}</dd></div>\n", name, valueHtml(value));
}

void addProjectFact(std::string& html, std::string_view name, const Report& report, const std::string& key) {
  const std::string value = projectValue(report, key);
  if (!value.empty()) {
    addFact(html, name, value);
  }
}

void addTestMark(std::string& html, const Report& report) {
  if (report.transmission.registrationId.rfind(TEST_PREFIX, 0) != 0) {
    return;
  }
  html += "<p class=\"test\"><span class=\"chip\">Test report from inside the maker's network</span></p>\n";
}

void addOrigin(std::string& html, const Report& report) {
  html += "<section aria-label=\"Origin\">\n<dl class=\"facts\">\n";
  addProjectFact(html, "Generated", report, "date_generated");
  addProjectFact(html, "Installation", report, "random_id");
  addFact(html, "Registration", report.transmission.registrationId);
  addProjectFact(html, "Project", report, "project_id");
  addProjectFact(html, "Project iteration", report, "project_iteration");
  addFact(html, "Folder", report.vestraDir);
  html += "</dl>\n</section>\n";
}

void addEnvironmentList(std::string& html, const MappedSection& section) {
  html += "<dl class=\"environment\">\n";
  for (const Item* item : section.items) {
    html += fmt::format("<div><dt class=\"key\">{}</dt><dd class=\"value\">{}</dd></div>\n",
                        keyHtml(item->key), valueHtml(item->value));
  }
  html += "</dl>\n";
}

bool areFigures(const MappedSection& section) {
  return std::all_of(section.items.begin(), section.items.end(),
                     [](const Item* item) { return isFigure(item->value); });
}

void addStatisticsTable(std::string& html, const MappedSection& section) {
  html += fmt::format("<table class=\"{}\">\n", areFigures(section) ? "statistics figures" : "statistics");
  html += "<thead><tr><th scope=\"col\">Key</th><th scope=\"col\">Value</th></tr></thead>\n<tbody>\n";
  for (const Item* item : section.items) {
    html += fmt::format("<tr><th scope=\"row\" class=\"key\">{}</th><td class=\"value\">{}</td></tr>\n",
                        keyHtml(item->key), valueHtml(item->value));
  }
  html += "</tbody>\n</table>\n";
}

void addItems(std::string& html, const MappedSection& section) {
  const bool isEnvironment = section.rule != nullptr && section.rule->htmlStyle == HtmlStyle::UserEnvironment;
  if (section.items.empty()) {
    html += "<p class=\"none\">Nothing was reported here.</p>\n";
  } else if (isEnvironment) {
    addEnvironmentList(html, section);
  } else {
    addStatisticsTable(html, section);
  }
}

void addSection(std::string& html, const MappedSection& section) {
  const std::string& map = section.rule == nullptr ? section.context : section.rule->htmlMap;
  html += fmt::format("<section>\n<div class=\"head\"><h2>{}</h2><span class=\"chip\">{}</span>",
                      escapedForHtml(headingOf(map)), escapedForHtml(section.client));
  if (section.rule == nullptr) {
    html += "<span class=\"test\"><span class=\"chip\">no rule</span></span>";
  }
  html += fmt::format("<span class=\"count\">{}</span></div>\n", countOf(section.items.size()));
  addItems(html, section);
  html += "</section>\n";
}

void addFooter(std::string& html, const Report& report) {
  html += fmt::format(
      "<footer>Report <span class=\"value\">{}</span>. Written by the stand-in design tool; "
      "nothing was transmitted.</footer>\n",
      report.transmission.clientId);
}

}  // namespace

std::string renderHtml(const Report& report, const std::vector<Rule>& rules) {
  std::string html;
  addHead(html, report);
  html += fmt::format("<body>\n<main>\n<header class=\"intro\">{}</header>\n",
                      renderIntro(report.transmission.intro));
  addTestMark(html, report);
  addOrigin(html, report);
  for (const MappedSection& section : mapSections(report, rules)) {
    addSection(html, section);
  }
  addFooter(html, report);
  html += "</main>\n</body>\n</html>\n";
  return html;
}

}  // namespace vestra::design_tool
