#include <vestra/vestra_data.h>

#include <gtest/gtest.h>

#include <string>

namespace Oza {
namespace {

std::string lineOf(const std::string& key, const std::string& value) {
  VestraParentData context("user_environment", "project", true);
  return VestraAddData(key, value, &context).toTclString();
}

TEST(ItemLine, ProjectFactIsOneCommand) {
  VestraParentData context("software_version_and_target_device", "project", true);
  VestraAddData item("tool_flow", "kelvo_orbelo", &context);
  EXPECT_EQ(item.toTclString(),
            "vestra_add_data -client project -key tool_flow -value \"kelvo_orbelo\""
            " -context \"software_version_and_target_device\"\n");
}

TEST(ItemLine, LineKeepsBothBackslashesOfAProductContext) {
  VestraParentData context("kelvo\\\\usage", "kelvo", false);
  VestraAddData item("runs", "2", &context);
  EXPECT_EQ(item.toTclString(),
            "vestra_add_data -client kelvo -key runs -value \"2\" -context \"kelvo\\\\usage\"\n");
}

TEST(ItemLine, EmptyValueStandsAsTwoQuotes) {
  EXPECT_EQ(lineOf("k", ""),
            "vestra_add_data -client project -key k -value \"\" -context \"user_environment\"\n");
}

TEST(ItemLine, EmptyKeyLeavesTwoBlanks) {
  EXPECT_EQ(lineOf("", "v"),
            "vestra_add_data -client project -key  -value \"v\" -context \"user_environment\"\n");
}

TEST(ItemLine, QuoteInTheValueIsWrittenUnbalanced) {
  EXPECT_EQ(lineOf("k", "a\"b"),
            "vestra_add_data -client project -key k -value \"a\"b\" -context \"user_environment\"\n");
}

TEST(ItemLine, LineFeedInTheValueSplitsTheCommand) {
  EXPECT_EQ(lineOf("k", "one\ntwo"),
            "vestra_add_data -client project -key k -value \"one\n"
            "two\" -context \"user_environment\"\n");
}

TEST(ItemLine, LineEscapesNothing) {
  EXPECT_EQ(lineOf("a b$c[d]", "\\ $x [y] {z} ;#"),
            "vestra_add_data -client project -key a b$c[d] -value \"\\ $x [y] {z} ;#\""
            " -context \"user_environment\"\n");
}

TEST(ItemLine, LineKeepsNulBytesAndBytesAbove127) {
  using namespace std::string_literals;
  EXPECT_EQ(lineOf("k\0\xff"s, "\x80\0v"s),
            "vestra_add_data -client project -key k\0\xff -value \"\x80\0v\""
            " -context \"user_environment\"\n"s);
}

TEST(ItemLine, LineKeepsAMegabyte) {
  const std::string megabyte(1048576, 'x');
  EXPECT_EQ(lineOf("k", megabyte), "vestra_add_data -client project -key k -value \"" + megabyte +
                                       "\" -context \"user_environment\"\n");
}

TEST(ItemLine, LineCarriesTheSuffixOfItsContext) {
  VestraParentData context("kelvo\\\\usage", "kelvo", false);
  VestraAddData item("runs", "2", &context);
  context.setVestraId("7");
  EXPECT_EQ(item.toTclString(),
            "vestra_add_data -client kelvo -key runs -value \"2\" -context \"kelvo\\\\usage/7\"\n");
}

TEST(ItemSegment, SegmentRunsItsPartsTogether) {
  VestraParentData context("software_version_and_target_device", "project", true);
  VestraAddData item("tool_flow", "kelvo_orbelo", &context);
  EXPECT_EQ(item.toCRCSegment(), "tool_flowkelvo_orbeloprojectsoftware_version_and_target_device");
}

TEST(ItemSegment, SegmentHasTheContextWithOneBackslash) {
  VestraParentData context("kelvo\\\\usage", "kelvo", false);
  EXPECT_EQ(VestraAddData("k", "v", &context).toCRCSegment(), "kvkelvokelvo\\usage");
}

TEST(ItemSegment, SegmentHasTheContextsSuffix) {
  VestraParentData context("kelvo\\\\usage", "kelvo", false);
  context.setVestraId("7");
  EXPECT_EQ(VestraAddData("k", "v", &context).toCRCSegment(), "kvkelvokelvo\\usage/7");
}

TEST(ItemSegment, SegmentLeavesBackslashesOfKeyAndValueAlone) {
  VestraParentData context("user_environment", "project", true);
  EXPECT_EQ(VestraAddData("k\\\\", "v\\\\", &context).toCRCSegment(), "k\\\\v\\\\projectuser_environment");
}

TEST(ItemSegment, SegmentDoesNotTellWhereTheKeyEnds) {
  VestraParentData context("user_environment", "project", true);
  EXPECT_EQ(VestraAddData("ab", "c", &context).toCRCSegment(), "abcprojectuser_environment");
  EXPECT_EQ(VestraAddData("a", "bc", &context).toCRCSegment(), "abcprojectuser_environment");
}

TEST(Item, ItemHasTheClientOfItsContext) {
  VestraParentData kelvo("kelvo\\\\usage", "kelvo", false);
  VestraParentData project("user_environment", "project", true);
  EXPECT_EQ(VestraAddData("k", "v", &kelvo).getClient(), "kelvo");
  EXPECT_EQ(VestraAddData("k", "v", &project).getClient(), "project");
}

/// A context that answers another client than it was made with.
class RenamedContext : public VestraParentData {
 public:
  using VestraParentData::VestraParentData;
  std::string getClient() override { return "renamed"; }
};

TEST(Item, ItemAsksItsContextForTheClientEachTime) {
  RenamedContext context("c", "p", true);
  VestraAddData item("k", "v", &context);
  EXPECT_EQ(item.getClient(), "renamed");
  EXPECT_EQ(item.toTclString(), "vestra_add_data -client renamed -key k -value \"v\" -context \"c\"\n");
  EXPECT_EQ(item.toCRCSegment(), "kvrenamedc");
}

TEST(Item, ItemIsNotFiledByItsConstructor) {
  VestraParentData context("c", "p", true);
  VestraAddData item("k", "v", &context);
  EXPECT_EQ(context.toTclString(), "");
}

TEST(Item, ItemLeavesItsContextUntouchedWhenItEnds) {
  VestraParentData context("c", "p", true);
  context.addChild(new VestraAddData("kept", "1", &context));
  delete new VestraAddData("gone", "2", &context);
  EXPECT_EQ(context.toTclString(), "vestra_add_data -client p -key kept -value \"1\" -context \"c\"\n");
}

}  // namespace
}  // namespace Oza
