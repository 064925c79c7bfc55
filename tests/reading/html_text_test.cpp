#include "reading/html_text.h"

#include <gtest/gtest.h>

namespace vestra::reading {
namespace {

TEST(HtmlText, MarkupIsEscapedAndInvisibleBytesAreNamed) {
  EXPECT_EQ(escapedForHtml("<a b='c' d=\"e\">&\n\t"), "&lt;a b=&#39;c&#39; d=&quot;e&quot;&gt;&amp;\n\t");
  EXPECT_EQ(escapedForHtml("\r\x7F\xFF"),
            "<span class=\"byte\">\\x0d</span><span class=\"byte\">\\x7f</span>"
            "<span class=\"byte\">\\xff</span>");
}

}  // namespace
}  // namespace vestra::reading
