#include "design_tool/pages/html_page.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <tuple>

namespace vestra::design_tool {
namespace {

using testing::HasSubstr;
using testing::Not;

const Rule USAGE{"kelvo", "kelvo\\usage", "x", "kelvo\\usage_figures", HtmlStyle::Statistics};
const Rule ENVIRONMENT{"kelvo", "kelvo\\usage", "x", "user_environment", HtmlStyle::UserEnvironment};

std::string pageWith(const std::vector<Item>& items, const std::vector<Rule>& rules) {
  Report report;
  report.sections = {{"kelvo", "kelvo\\usage"}};
  report.items = items;
  return renderHtml(report, rules);
}

TEST(HtmlPage, ShowsEachSectionInTheStyleOfItsRule) {
  EXPECT_THAT(
      pageWith({{0, "total_runs", "two", 3}}, {USAGE}),
      HasSubstr(
          "<h2>Usage figures</h2><span class=\"chip\">kelvo</span><span class=\"count\">1 item</span></div>\n"
          "<table class=\"statistics\">\n"
          "<thead><tr><th scope=\"col\">Key</th><th scope=\"col\">Value</th></tr></thead>\n"
          "<tbody>\n"
          "<tr><th scope=\"row\" class=\"key\">total_<wbr>runs</th><td class=\"value\">two</td></tr>\n"
          "</tbody>\n"
          "</table>\n"));
  EXPECT_THAT(pageWith({{0, "os", "Linux", 3}}, {ENVIRONMENT}),
              HasSubstr("<h2>User environment</h2><span class=\"chip\">kelvo</span><span class=\"count\">1 "
                        "item</span></div>\n"
                        "<dl class=\"environment\">\n"
                        "<div><dt class=\"key\">os</dt><dd class=\"value\">Linux</dd></div>\n"
                        "</dl>\n"));
  EXPECT_THAT(pageWith({}, {USAGE}), HasSubstr("<p class=\"none\">Nothing was reported here.</p>\n"));
  EXPECT_THAT(pageWith({{0, "a", "b", 3}}, {}),
              HasSubstr("<h2>Usage</h2><span class=\"chip\">kelvo</span><span class=\"test\"><span "
                        "class=\"chip\">no rule</span></span>"));
  EXPECT_THAT(pageWith({{0, "a", "not_applicable", 3}, {0, "b", "1", 4}}, {USAGE}),
              HasSubstr("<span class=\"count\">2 items, 1 not applicable</span>"));
}

TEST(HtmlPage, AlignsATableOfNumbers) {
  const std::pair<const char*, bool> rows[] = {{"-12", true}, {"1,234.5", true}, {"-", false},
                                               {"", false},   {"1e9", false},    {".", false}};
  for (const auto& [value, isFigure] : rows) {
    EXPECT_THAT(pageWith({{0, "a", "7", 3}, {0, "b", value, 4}}, {USAGE}),
                HasSubstr(isFigure ? "<table class=\"statistics figures\">" : "<table class=\"statistics\">"))
        << value;
  }
}

TEST(HtmlPage, HoldsNoMarkupOfTheReport) {
  const std::string evil = "</td></style><script>alert(1)</script>";
  Report report;
  report.vestraDir = report.transmission.intro = report.transmission.registrationId = evil;
  report.sections = {{evil, evil}, {"project", "p"}};
  report.items = {{0, evil, evil, 3}, {1, "project_id", evil, 4}, {1, "random_id", evil, 5}};
  for (const HtmlStyle style : {HtmlStyle::Statistics, HtmlStyle::UserEnvironment}) {
    const std::string page = renderHtml(report, {{evil, evil, evil, evil, style}});
    EXPECT_THAT(page, Not(HasSubstr("<script")));
    EXPECT_EQ(page.find("</style>"), page.rfind("</style>"));
  }
}

TEST(HtmlPage, LoadsNothing) {
  const std::string page = pageWith({{0, "a", "b", 3}}, {USAGE});
  for (const char* word :
       {"<script", "src=", "href=", "url(", "@import", "<link", "http:", "https:", "<a "}) {
    EXPECT_THAT(page, Not(HasSubstr(word)));
  }
  EXPECT_THAT(page, HasSubstr("content=\"default-src 'none'; style-src 'unsafe-inline'\""));
}

TEST(HtmlPage, SaysHowLongEachIdentifierLivesAndHowToResetIt) {
  Report report;
  report.vestraDir = "/p/<vestra>/";
  report.sections = {{"project", "p"}};
  report.items = {{0, "random_id", "R", 3}, {0, "project_id", "P", 4}, {0, "project_iteration", "7", 5}};
  const std::string page = renderHtml(report, {});
  EXPECT_THAT(page,
              HasSubstr("delete the line that begins with <span class=\"path\">RandomID=</span> in <span "
                        "class=\"path\">~/.Calvix/Common/2018.2/vestra</span>."));
  EXPECT_THAT(page, HasSubstr("delete <span class=\"path\">/p/&lt;vestra&gt;/.kelvo_vestrra.info</span>."));
  EXPECT_THAT(page,
              HasSubstr("<dt>Project iteration</dt><dd class=\"value\">7</dd><dd class=\"note\">How many "
                        "runs have asked for a report in this project, this one included."));
}

TEST(HtmlPage, LinksToThePageAboutPrivacy) {
  EXPECT_THAT(renderHtml(Report(), {}, "/opt/a \"b\"/privacy.html"),
              HasSubstr("<a href=\"file:///opt/a%20%22b%22/privacy.html\">What is reported about you</a>"));
}

TEST(HtmlPage, ShowsInvisibleCharactersAndBlanks) {
  const std::string page = pageWith({{0, "a", " \t", 3}, {0, "b", "x\u202Ey\u200Bz\uFEFF", 4}}, {USAGE});
  EXPECT_THAT(page, HasSubstr("<td class=\"value\"><span class=\"byte\">\\x20</span><span "
                              "class=\"byte\">\\x09</span></td>"));
  for (const char* hidden : {"\u202E", "\u200B", "\uFEFF"}) {
    EXPECT_THAT(page, Not(HasSubstr(hidden)));
  }
}

TEST(HtmlPage, IsHeadedByTheIntro) {
  const std::tuple<const char*, const char*, const char*> rows[] = {
      {"<H3>KELVO \u202EegasU</H3><BR>", "KELVO \\xe2\\x80\\xaeegasU",
       "KELVO <span class=\"byte\">\\xe2</span>"},
      {"<b>a</b>", "&lt;b&gt;a&lt;/b&gt;", "&lt;b&gt;a&lt;/b&gt;</h1>"},
      {"", "Usage Report", "Usage Report</h1>"},
      {"<H3> </H3><BR>", "Usage Report", "Usage Report</h1>"},
  };
  for (const auto& [intro, title, heading] : rows) {
    Report report;
    report.transmission.intro = intro;
    const std::string page = renderHtml(report, {});
    EXPECT_THAT(page, HasSubstr(std::string("<title>") + title + "</title>"));
    EXPECT_THAT(page, HasSubstr(std::string("<h1>") + heading));
  }
}

TEST(HtmlPage, MarksATestReport) {
  Report report;
  report.transmission.registrationId = "VESTRA_TEST_KELVO_1";
  EXPECT_THAT(renderHtml(report, {}), HasSubstr("Test report from inside the maker's network"));
  report.transmission.registrationId = "1";
  EXPECT_THAT(renderHtml(report, {}), Not(HasSubstr("Test report")));
}

}  // namespace
}  // namespace vestra::design_tool
