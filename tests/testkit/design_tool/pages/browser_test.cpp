#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/files.h"
#include "support/process.h"
#include "support/scoped_env.h"
#include "support/temporary_directory.h"
#include "testkit/design_tool/golden.h"

namespace vestra::design_tool {
namespace {

using testing::HasSubstr;
using vestra_test::isInstalled;
using vestra_test::Outcome;

const std::vector<std::string> CHROMIUM{"chromium",
                                        "--headless",
                                        "--no-sandbox",
                                        "--disable-gpu",
                                        "--disable-quic",
                                        "--no-first-run",
                                        "--disable-background-networking",
                                        "--disable-component-update",
                                        "--disable-sync"};

std::string replaced(std::string text, const std::string& from, const std::string& to) {
  for (std::size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size())) {
    text.replace(at, from.size(), to);
  }
  return text;
}

std::string withoutLineBreakHints(const std::string& html) { return replaced(html, "<wbr>", ""); }

std::string mainPartOf(const std::string& html) {
  const std::size_t begin = html.find("<main>");
  return html.substr(begin, html.rfind("</main>") - begin);
}

/// The pages in a real browser.
class Browser : public testing::Test {
 protected:
  void SetUp() override {
    if (!isInstalled("chromium")) {
      GTEST_SKIP() << "chromium (Debian package chromium) is not installed";
    }
    vestra_test::writeFile(page, golden("usage_statistics_ext_kelvo.html"));
  }

  Outcome open(const std::vector<std::string>& what) const {
    std::vector<std::string> words = CHROMIUM;
    words.push_back("--user-data-dir=" + (directory / "profile"));
    words.insert(words.end(), what.begin(), what.end());
    words.push_back("file://" + page);
    const vestra_test::ScopedEnv home("HOME", directory / "home");
    return vestra_test::run(words);
  }

  /// The page as the browser has understood it.
  std::string dom() const { return withoutLineBreakHints(open({"--dump-dom"}).out); }

  const vestra_test::TemporaryDirectory directory;
  const std::string page = directory / "page.html";
};

TEST_F(Browser, ShowsTheTextsOfTheReport) {
  const std::string dom = this->dom();
  for (const char* text :
       {"<title>KELVO Usage Report</title>", "<h1>KELVO Usage Report</h1>", "<h2>User environment</h2>",
        "target_speed</dt><dd class=\"value\"><span class=\"absent\">not applicable</span></dd>",
        "<th scope=\"row\" class=\"key\">runs</th><td class=\"value\">2</td>",
        "first line\n  second line, &lt;b&gt;indented&lt;/b&gt; &amp; 'quoted'</td>",
        "stray <span class=\"byte\">\\xff</span><span class=\"byte\">\\xfe</span> return",
        "caf\xC3\xA9 \xE2\x82\xAC \xF0\x9F\x93\x88 \xD7\xA9\xD7\x9C\xD7\x95\xD7\x9D</td>"}) {
    EXPECT_THAT(dom, HasSubstr(text));
  }
}

TEST_F(Browser, FindsTheMarkupBalanced) {
  const std::string source = withoutLineBreakHints(golden("usage_statistics_ext_kelvo.html"));
  EXPECT_EQ(mainPartOf(dom()), replaced(replaced(mainPartOf(source), "&#39;", "'"), "&quot;", "\""));
}

TEST_F(Browser, PrintsThePage) {
  const std::string pdf = directory / "page.pdf";
  EXPECT_EQ(open({"--no-pdf-header-footer", "--print-to-pdf=" + pdf}).status, 0);
  EXPECT_THAT(vestra_test::readFile(pdf), testing::StartsWith("%PDF-"));
}

}  // namespace
}  // namespace vestra::design_tool
