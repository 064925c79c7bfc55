#include "design_tool/pages/page_style.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>

namespace vestra::design_tool {
namespace {

/// The colours of one scheme.
class Scheme {
 public:
  /// @param position the scheme's place among those of the style sheet
  explicit Scheme(int position) {
    std::size_t begin = 0;
    for (int i = 0; i <= position; ++i) {
      begin = PAGE_STYLE.find(":root {", begin) + 1;
    }
    colours = PAGE_STYLE.substr(begin, PAGE_STYLE.find('}', begin) - begin);
  }

  /// How much lighter one colour is than the other, as WCAG 2 has it.
  double contrast(const std::string& one, const std::string& other) const {
    const auto [darker, lighter] = std::minmax({luminance(one), luminance(other)});
    return (lighter + 0.05) / (darker + 0.05);
  }

 private:
  double luminance(const std::string& colour) const {
    const std::size_t at = colours.find("--" + colour + ": #") + colour.size() + 5;
    const auto channel = [&](std::size_t index) {
      const double part = std::stoi(std::string(colours.substr(at + 2 * index, 2)), nullptr, 16) / 255.0;
      return part <= 0.03928 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * channel(0) + 0.7152 * channel(1) + 0.0722 * channel(2);
  }

  std::string_view colours;
};

TEST(PageStyle, TextHasContrastInLightAndInDark) {
  for (const int position : {0, 1}) {
    const Scheme scheme(position);
    for (const char* paper : {"paper", "card", "band"}) {
      for (const char* ink : {"ink", "soft", "accent"}) {
        EXPECT_GE(scheme.contrast(ink, paper), 4.5) << ink << " on " << paper << ", scheme " << position;
      }
    }
    EXPECT_GE(scheme.contrast("warn-ink", "warn"), 4.5) << position;
  }
}

TEST(PageStyle, AFocusedLinkIsVisible) {
  EXPECT_NE(PAGE_STYLE.find("a:focus-visible { outline: 2px solid"), std::string_view::npos);
}

}  // namespace
}  // namespace vestra::design_tool
