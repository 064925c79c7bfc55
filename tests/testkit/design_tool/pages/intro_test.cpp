#include "design_tool/pages/intro.h"

#include <gtest/gtest.h>

namespace vestra::design_tool {
namespace {

TEST(Intro, TheLibrarysIntroIsAHeading) {
  EXPECT_EQ(renderIntro("<H3>KELVO Usage Report</H3><BR>"), "<h1>KELVO Usage Report</h1><br>");
  EXPECT_EQ(titleOf("<H3>KELVO Usage Report</H3><BR>"), "KELVO Usage Report");
}

TEST(Intro, IntroTagsAreReadInEitherCase) { EXPECT_EQ(renderIntro("<h3>a</H3><bR>b"), "<h1>a</h1><br>b"); }

TEST(Intro, MarkupBesidesTheIntroTagsIsShownAsItIsSpelled) {
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

}  // namespace
}  // namespace vestra::design_tool
