#include <vestra/vestra_data.h>

#include "support/test.h"

namespace Oza {
namespace {

TEST(Item, IsOneLineAndOneSegmentWithNothingEscaped) {
  const std::string megabyte(1048576, 'x');
  const struct {
    const char* name;
    std::string key;
    std::string value;
    std::string line;
    std::string segment;
  } rows[] = {
      {"a project fact", "tool_flow", "kelvo_orbelo", "-key tool_flow -value \"kelvo_orbelo\"",
       "tool_flowkelvo_orbelo"},
      {"an empty value", "k", "", "-key k -value \"\"", "k"},
      {"an empty key", "", "v", "-key  -value \"v\"", "v"},
      {"a quote in the value", "k", "a\"b", "-key k -value \"a\"b\"", "ka\"b"},
      {"a line feed in the value", "k", "one\ntwo", "-key k -value \"one\ntwo\"", "kone\ntwo"},
      {"what an interpreter reads", "a b$c[d]", "\\\\ $x [y] {z} ;#",
       "-key a b$c[d] -value \"\\\\ $x [y] {z} ;#\"", "a b$c[d]\\\\ $x [y] {z} ;#"},
      {"any bytes", "k\0\xff"s, "\x80\0v"s, "-key k\0\xff -value \"\x80\0v\""s, "k\0\xff\x80\0v"s},
      {"a megabyte", "k", megabyte, "-key k -value \"" + megabyte + "\"", "k" + megabyte},
  };
  VestraParentData context("user_environment", "project", true);
  for (const auto& row : rows) {
    VestraAddData item(row.key, row.value, &context);
    EXPECT_TRUE(item.toTclString() ==
                "vestra_add_data -client project " + row.line + " -context \"user_environment\"\n")
        << row.name;
    EXPECT_TRUE(item.toCRCSegment() == row.segment + "projectuser_environment") << row.name;
  }
}

TEST(Item, HasTwoBackslashesOfItsContextInTheLineAndOneInTheSegment) {
  VestraParentData context("kelvo\\\\usage", "kelvo", false);
  VestraAddData item("k", "v", &context);
  EXPECT_EQ(item.toTclString(),
            "vestra_add_data -client kelvo -key k -value \"v\" -context \"kelvo\\\\usage\"\n");
  EXPECT_EQ(item.toCRCSegment(), "kvkelvokelvo\\usage");
  context.setVestraId("7");
  EXPECT_EQ(item.toTclString(),
            "vestra_add_data -client kelvo -key k -value \"v\" -context \"kelvo\\\\usage/7\"\n");
  EXPECT_EQ(item.toCRCSegment(), "kvkelvokelvo\\usage/7");
}

/// A context that gives another client than it was made with.
class RenamedContext : public VestraParentData {
 public:
  using VestraParentData::VestraParentData;
  std::string getClient() override { return "renamed"; }
};

TEST(Item, AsksItsContextForTheClientEachTime) {
  RenamedContext context("c", "p", true);
  VestraAddData item("k", "v", &context);
  EXPECT_EQ(item.getClient(), "renamed");
  EXPECT_EQ(item.toTclString(), "vestra_add_data -client renamed -key k -value \"v\" -context \"c\"\n");
  EXPECT_EQ(item.toCRCSegment(), "kvrenamedc");
}

TEST(Item, IsNotFiledByItsConstructorAndLeavesItsContextUntouchedAtItsEnd) {
  VestraParentData context("c", "p", true);
  context.addChild(new VestraAddData("kept", "1", &context));
  delete new VestraAddData("gone", "2", &context);
  EXPECT_EQ(context.toTclString(), "vestra_add_data -client p -key kept -value \"1\" -context \"c\"\n");
}

}  // namespace
}  // namespace Oza
