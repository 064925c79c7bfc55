#include <vestra/vestra.h>

#include <gtest/gtest.h>

#include <type_traits>

#include <vestra/vestra_data.h>

namespace Oza {
namespace {

/// Points a constant at another text and back again at the end.
class ScopedConstant {
 public:
  ScopedConstant(const char*& constant, const char* text) : changed(constant), before(constant) {
    changed = text;
  }
  ScopedConstant(const ScopedConstant&) = delete;
  ScopedConstant& operator=(const ScopedConstant&) = delete;
  ~ScopedConstant() { changed = before; }

 private:
  const char*& changed;
  const char* before;
};

// Hosts read them and may point them elsewhere.
static_assert(std::is_same_v<decltype(NEW_LINE), const char*>);
static_assert(std::is_same_v<decltype(SPACE), const char*>);
static_assert(std::is_same_v<decltype(PARAM_CONTEXT), const char*>);
static_assert(std::is_same_v<decltype(PARAM_VALUE), const char*>);
static_assert(std::is_same_v<decltype(PARAM_KEY), const char*>);
static_assert(std::is_same_v<decltype(PARAM_CLIENT), const char*>);
static_assert(std::is_same_v<decltype(TYPE_ADD_DATA), const char*>);

TEST(TextConstants, TextConstantsAreTheWordsOfAnItemsLine) {
  EXPECT_STREQ(NEW_LINE, "\n");
  EXPECT_STREQ(SPACE, " ");
  EXPECT_STREQ(PARAM_CONTEXT, "-context");
  EXPECT_STREQ(PARAM_VALUE, "-value");
  EXPECT_STREQ(PARAM_KEY, "-key");
  EXPECT_STREQ(PARAM_CLIENT, "-client");
  EXPECT_STREQ(TYPE_ADD_DATA, "vestra_add_data");
}

TEST(TextConstants, TextConstantsAreReadAnewForEachLine) {
  VestraParentData context("c", "p", true);
  VestraAddData item("k", "v", &context);
  {
    const ScopedConstant newLine(NEW_LINE, "<n>");
    const ScopedConstant space(SPACE, "<s>");
    const ScopedConstant contextWord(PARAM_CONTEXT, "<context>");
    const ScopedConstant valueWord(PARAM_VALUE, "<value>");
    const ScopedConstant keyWord(PARAM_KEY, "<key>");
    const ScopedConstant clientWord(PARAM_CLIENT, "<client>");
    const ScopedConstant command(TYPE_ADD_DATA, "<add>");
    EXPECT_EQ(item.toTclString(),
              "<add><s><client><s>p<s><key><s>k<s><value><s>\"v\"<s><context><s>\"c\"<n>");
  }
  EXPECT_EQ(item.toTclString(), "vestra_add_data -client p -key k -value \"v\" -context \"c\"\n");
}

}  // namespace
}  // namespace Oza
