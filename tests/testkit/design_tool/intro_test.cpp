#include "intro.h"

#include <gtest/gtest.h>

#include "html_text.h"

namespace vestra::design_tool {
namespace {

TEST(Intro, TheLibrarysOwnIsAHeading) {
  EXPECT_EQ(renderIntro("<H3>KELVO Usage Report</H3><BR>"), "<h1>KELVO Usage Report</h1><br>");
  EXPECT_EQ(titleOf("<H3>KELVO Usage Report</H3><BR>"), "KELVO Usage Report");
}

TEST(Intro, TagsAreReadInEitherCase) { EXPECT_EQ(renderIntro("<h3>a</H3><bR>b"), "<h1>a</h1><br>b"); }

TEST(Intro, EverythingElseIsShownAsItIsSpelled) {
  EXPECT_EQ(renderIntro("<script>alert('x')</script><H3 onclick=\"y\">&amp;"),
            "&lt;script&gt;alert(&#39;x&#39;)&lt;/script&gt;&lt;H3 onclick=&quot;y&quot;&gt;&amp;amp;");
}

TEST(Intro, HeadingsAreBalancedWhateverTheIntroSays) {
  EXPECT_EQ(renderIntro("<H3>open"), "<h1>open</h1>");
  EXPECT_EQ(renderIntro("</H3>closed"), "&lt;/H3&gt;closed");
  EXPECT_EQ(renderIntro("<H3>a<H3>b</H3>"), "<h1>a&lt;H3&gt;b</h1>");
}

TEST(Intro, WithoutWordsThePageStillHasATitle) {
  EXPECT_EQ(titleOf("<H3> </H3><BR>\n"), "Usage Report");
  EXPECT_EQ(titleOf(""), "Usage Report");
}

TEST(HtmlText, MarkupIsEscapedAndWhatCantBeSeenIsNamed) {
  EXPECT_EQ(escapedForHtml("<a b='c' d=\"e\">&\n\t"), "&lt;a b=&#39;c&#39; d=&quot;e&quot;&gt;&amp;\n\t");
  EXPECT_EQ(escapedForHtml("\r\x7F\xFF"),
            "<span class=\"byte\">\\x0d</span><span class=\"byte\">\\x7f</span>"
            "<span class=\"byte\">\\xff</span>");
}

}  // namespace
}  // namespace vestra::design_tool
