#include <vestra/vestra_data.h>

#include <boost/algorithm/string/replace.hpp>

#include "support/test.h"

namespace Oza {
namespace {

struct TextConstant {
  const char** constant;
  const char* text;
};

const TextConstant TEXT_CONSTANTS[] = {{&NEW_LINE, "\n"},
                                       {&SPACE, " "},
                                       {&PARAM_CONTEXT, "-context"},
                                       {&PARAM_VALUE, "-value"},
                                       {&PARAM_KEY, "-key"},
                                       {&PARAM_CLIENT, "-client"},
                                       {&TYPE_ADD_DATA, "vestra_add_data"}};

TEST(TextConstants, AreTheWordsOfAnItemsLineAndReadAnewForEach) {
  VestraParentData context("c", "p", true);
  VestraAddData item("k", "v", &context);
  const std::string line = item.toTclString();
  for (const TextConstant& each : TEXT_CONSTANTS) {
    EXPECT_STREQ(*each.constant, each.text);
    *each.constant = "<changed>";
    const std::string changed = item.toTclString();
    *each.constant = each.text;
    EXPECT_EQ(changed, boost::algorithm::replace_all_copy(line, each.text, "<changed>"));
    EXPECT_EQ(item.toTclString(), line);
  }
  EXPECT_EQ(line, "vestra_add_data -client p -key k -value \"v\" -context \"c\"\n");
}

}  // namespace
}  // namespace Oza
