#include "design_tool/pages/html_page.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

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

TEST(HtmlPage, StatisticsAreATable) {
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
}

TEST(HtmlPage, ATableOfNumbersAlignsThem) {
  EXPECT_THAT(pageWith({{0, "a", "-12", 3}, {0, "b", "1,234.5", 4}}, {USAGE}),
              HasSubstr("<table class=\"statistics figures\">"));
  EXPECT_THAT(pageWith({{0, "a", "-12", 3}, {0, "b", "-", 4}}, {USAGE}),
              HasSubstr("<table class=\"statistics\">"));
  EXPECT_THAT(pageWith({{0, "a", "", 3}}, {USAGE}), HasSubstr("<table class=\"statistics\">"));
}

TEST(HtmlPage, TheEnvironmentIsAListOfFacts) {
  EXPECT_THAT(pageWith({{0, "os", "Linux", 3}}, {ENVIRONMENT}),
              HasSubstr("<h2>User environment</h2><span class=\"chip\">kelvo</span><span class=\"count\">1 "
                        "item</span></div>\n"
                        "<dl class=\"environment\">\n"
                        "<div><dt class=\"key\">os</dt><dd class=\"value\">Linux</dd></div>\n"
                        "</dl>\n"));
}

TEST(HtmlPage, ARuleWithoutDataSaysSo) {
  EXPECT_THAT(pageWith({}, {USAGE}), HasSubstr("<p class=\"none\">Nothing was reported here.</p>\n"));
}

TEST(HtmlPage, DataWithoutARuleIsShownAndMarked) {
  EXPECT_THAT(pageWith({{0, "a", "b", 3}}, {}),
              HasSubstr("<h2>Usage</h2><span class=\"chip\">kelvo</span><span class=\"test\"><span "
                        "class=\"chip\">no rule</span></span>"));
}

TEST(HtmlPage, NothingFromTheReportBecomesMarkup) {
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

TEST(HtmlPage, ThePageNeedsNothingBesides) {
  const std::string page = pageWith({{0, "a", "b", 3}}, {USAGE});
  for (const char* word : {"<script", "src=", "href=", "url(", "@import", "<link", "http:", "https:"}) {
    EXPECT_THAT(page, Not(HasSubstr(word)));
  }
  EXPECT_THAT(page, HasSubstr("content=\"default-src 'none'; style-src 'unsafe-inline'\""));
}

TEST(HtmlPage, ThePageSaysWhoMadeItAndThatNothingWasTransmitted) {
  const std::string page = pageWith({}, {});
  EXPECT_THAT(page,
              HasSubstr("Vestra, a part of the program that you ran, has written down what this page shows"));
  EXPECT_THAT(page, HasSubstr("made by the stand-in design tool, with which developers test; it has "
                              "<strong>transmitted nothing</strong>."));
}

TEST(HtmlPage, EachIdentifierSaysHowLongItLivesAndHowToResetIt) {
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
  EXPECT_THAT(page, HasSubstr("<dt>Registration</dt>"));
  EXPECT_THAT(page, HasSubstr("The label beside a heading names who reports"));
}

TEST(HtmlPage, TheCountSaysHowManyItemsAreNotApplicable) {
  EXPECT_THAT(pageWith({{0, "a", "not_applicable", 3}, {0, "b", "1", 4}}, {USAGE}),
              HasSubstr("<span class=\"count\">2 items, 1 not applicable</span>"));
}

TEST(HtmlPage, ThePageAboutPrivacyIsLinkedWhereItIsInstalled) {
  EXPECT_THAT(renderHtml(Report(), {}, "/opt/a \"b\"/privacy.html"),
              HasSubstr("<a href=\"file:///opt/a%20%22b%22/privacy.html\">What is reported about you</a>"));
  EXPECT_THAT(renderHtml(Report(), {}), Not(HasSubstr("<a ")));
}

TEST(HtmlPage, NoTwoSectionsHaveOneHeading) {
  const std::string page = pageWith({}, {{"kelvo", "1", "x", "a\\usage", HtmlStyle::Statistics},
                                         {"kelvo", "2", "x", "b\\usage", HtmlStyle::Statistics},
                                         {"kelvo", "3", "x", "c\\options", HtmlStyle::Statistics},
                                         {"tavlo", "4", "x", "b\\usage", HtmlStyle::Statistics}});
  for (const char* heading : {"A\\usage", "B\\usage (kelvo, 2)", "Options", "B\\usage (tavlo, 4)"}) {
    EXPECT_THAT(page, HasSubstr(std::string("<h2>") + heading + "</h2>"));
  }
}

TEST(HtmlPage, InvisibleCharactersAndBlanksAreShown) {
  const std::string page = pageWith({{0, "a", " \t", 3}, {0, "b", "x\u202Ey\u200Bz\uFEFF", 4}}, {USAGE});
  EXPECT_THAT(page, HasSubstr("<td class=\"value\"><span class=\"byte\">\\x20</span><span "
                              "class=\"byte\">\\x09</span></td>"));
  for (const char* hidden : {"\u202E", "\u200B", "\uFEFF"}) {
    EXPECT_THAT(page, Not(HasSubstr(hidden)));
  }
}

TEST(HtmlPage, TheHeadingCannotBeTurnedRound) {
  Report report;
  report.transmission.intro = "<H3>KELVO \u202EegasU</H3>";
  const std::string page = renderHtml(report, {});
  EXPECT_THAT(page, HasSubstr("<title>KELVO \\xe2\\x80\\xaeegasU</title>"));
  EXPECT_THAT(page, HasSubstr("<h1>KELVO <span class=\"byte\">\\xe2</span>"));
  EXPECT_THAT(page, Not(HasSubstr("\u202E")));
}

TEST(HtmlPage, ATestReportIsMarkedAsOne) {
  Report report;
  report.transmission.registrationId = "VESTRA_TEST_KELVO_1";
  EXPECT_THAT(renderHtml(report, {}), HasSubstr("Test report from inside the maker's network"));
  report.transmission.registrationId = "1";
  EXPECT_THAT(renderHtml(report, {}), Not(HasSubstr("Test report")));
}

}  // namespace
}  // namespace vestra::design_tool
