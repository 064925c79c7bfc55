#include <vestra/vestra_data.h>

#include <gtest/gtest.h>

#include <string>
#include <utility>

namespace Oza {
namespace {

/// A node that notes its end.
class NotedNode : public VestraDataInterface {
 public:
  NotedNode(std::string name, std::string& ends) : ownName(std::move(name)), endsSeen(ends) {}
  ~NotedNode() override { endsSeen += ownName; }

  std::string toTclString() override { return "<" + ownName + ">"; }
  std::string toCRCSegment() override { return "(" + ownName + ")"; }
  std::string getClient() override { return ownName; }

 private:
  std::string ownName;
  std::string& endsSeen;
};

TEST(Context, ContextWithoutChildrenRendersAsNothing) {
  VestraParentData context("user_environment", "project", true);
  EXPECT_EQ(context.toTclString(), "");
  EXPECT_EQ(context.toCRCSegment(), "");
}

TEST(Context, ContextRendersItsItemsInFilingOrderAndNothingElse) {
  VestraParentData context("user_environment", "project", true);
  context.addChild(new VestraAddData("c", "3", &context));
  context.addChild(new VestraAddData("a", "1", &context));
  context.addChild(new VestraAddData("b", "2", &context));
  EXPECT_EQ(context.toTclString(),
            "vestra_add_data -client project -key c -value \"3\" -context \"user_environment\"\n"
            "vestra_add_data -client project -key a -value \"1\" -context \"user_environment\"\n"
            "vestra_add_data -client project -key b -value \"2\" -context \"user_environment\"\n");
  EXPECT_EQ(context.toCRCSegment(),
            "c3projectuser_environmenta1projectuser_environmentb2projectuser_environment");
}

TEST(Context, ContextKeepsItemsWithTheSameKey) {
  VestraParentData context("user_environment", "project", true);
  context.addChild(new VestraAddData("k", "1", &context));
  context.addChild(new VestraAddData("k", "2", &context));
  EXPECT_EQ(context.toTclString(),
            "vestra_add_data -client project -key k -value \"1\" -context \"user_environment\"\n"
            "vestra_add_data -client project -key k -value \"2\" -context \"user_environment\"\n");
}

TEST(Context, ContextAmongAnothersChildrenContributesItsOwnLines) {
  VestraParentData outer("outer", "o", true);
  auto* inner = new VestraParentData("inner", "i", true);
  outer.addChild(inner);
  inner->addChild(new VestraAddData("k", "v", inner));
  EXPECT_EQ(outer.toTclString(), "vestra_add_data -client i -key k -value \"v\" -context \"inner\"\n");
  EXPECT_EQ(outer.toCRCSegment(), "kviinner");
}

TEST(Context, ContextAsksItsChildrenThroughTheirInterface) {
  std::string ends;
  VestraParentData context("c", "p", true);
  context.addChild(new NotedNode("a", ends));
  context.addChild(new NotedNode("b", ends));
  EXPECT_EQ(context.toTclString(), "<a><b>");
  EXPECT_EQ(context.toCRCSegment(), "(a)(b)");
}

TEST(Context, ContextSkipsANullChildWhenItRenders) {
  VestraParentData context("user_environment", "project", true);
  context.addChild(nullptr);
  context.addChild(new VestraAddData("k", "v", &context));
  context.addChild(nullptr);
  EXPECT_EQ(context.toTclString(),
            "vestra_add_data -client project -key k -value \"v\" -context \"user_environment\"\n");
  EXPECT_EQ(context.toCRCSegment(), "kvprojectuser_environment");
}

TEST(Context, ContextRendersAnItemOfAnotherContextAsThatOnes) {
  VestraParentData other("usage", "kelvo", false);
  VestraParentData context("user_environment", "project", true);
  context.addChild(new VestraAddData("k", "v", &other));
  EXPECT_EQ(context.toTclString(), "vestra_add_data -client kelvo -key k -value \"v\" -context \"usage\"\n");
  EXPECT_EQ(context.toCRCSegment(), "kvkelvousage");
}

TEST(Context, ContextTellsItsClient) {
  EXPECT_EQ(VestraParentData("c", "kelvo", false).getClient(), "kelvo");
}

TEST(Context, ContextFreesItsChildrenInFilingOrder) {
  std::string ends;
  {
    VestraParentData context("c", "p", true);
    context.addChild(new NotedNode("1", ends));
    context.addChild(new NotedNode("2", ends));
    context.addChild(new NotedNode("3", ends));
    EXPECT_EQ(ends, "");
  }
  EXPECT_EQ(ends, "123");
}

TEST(Context, ContextSkipsANullChildWhenItEnds) {
  std::string ends;
  {
    VestraParentData context("c", "p", true);
    context.addChild(nullptr);
    context.addChild(new NotedNode("1", ends));
    context.addChild(nullptr);
  }
  EXPECT_EQ(ends, "1");
}

TEST(Context, ContextFreesItsChildrenWhenFreedThroughTheInterface) {
  std::string ends;
  auto* context = new VestraParentData("c", "p", true);
  context->addChild(new NotedNode("1", ends));
  VestraDataInterface* node = context;
  delete node;
  EXPECT_EQ(ends, "1");
}

TEST(ContextPath, PathIsTheContextItWasMadeWith) {
  VestraParentData context("kelvo\\\\usage", "kelvo", false);
  EXPECT_EQ(context.getContext(), "kelvo\\\\usage");
  EXPECT_EQ(context.getFormattedContext(), "kelvo\\\\usage");
  EXPECT_EQ(context.getWdmContext(), "kelvo\\\\usage");
}

TEST(ContextPath, PathTakesASuffixAndLosesItAgain) {
  VestraParentData context("kelvo\\\\usage", "kelvo", false);
  context.setVestraId("7");
  EXPECT_EQ(context.getContext(), "kelvo\\\\usage/7");
  EXPECT_EQ(context.getFormattedContext(), "kelvo\\\\usage/7");
  EXPECT_EQ(context.getWdmContext(), "kelvo\\\\usage/7");
  context.setVestraId("");
  EXPECT_EQ(context.getContext(), "kelvo\\\\usage");
  EXPECT_EQ(context.getFormattedContext(), "kelvo\\\\usage");
  EXPECT_EQ(context.getWdmContext(), "kelvo\\\\usage");
}

TEST(ContextPath, SecondSuffixReplacesTheFirst) {
  VestraParentData context("c", "p", true);
  context.setVestraId("7");
  context.setVestraId("8/9");
  EXPECT_EQ(context.getContext(), "c/8/9");
}

TEST(ContextPath, EmptyContextStillTakesASuffix) {
  VestraParentData context("", "p", true);
  context.setVestraId("7");
  EXPECT_EQ(context.getContext(), "/7");
}

std::string checksumFormOf(const std::string& path) {
  return VestraParentData(path, "p", true).getCRCContext();
}

TEST(ContextPathInTheChecksum, PathReadsTwoBackslashesAsOne) {
  EXPECT_EQ(checksumFormOf("kelvo\\\\usage"), "kelvo\\usage");
}

TEST(ContextPathInTheChecksum, PairsNeverOverlap) {
  EXPECT_EQ(checksumFormOf("\\"), "\\");
  EXPECT_EQ(checksumFormOf("\\\\"), "\\");
  EXPECT_EQ(checksumFormOf("\\\\\\"), "\\\\");
  EXPECT_EQ(checksumFormOf("\\\\\\\\"), "\\\\");
  EXPECT_EQ(checksumFormOf("\\\\\\\\\\"), "\\\\\\");
}

TEST(ContextPathInTheChecksum, PathWithoutAPairIsThePath) {
  EXPECT_EQ(checksumFormOf("software_version_and_target_device"), "software_version_and_target_device");
  EXPECT_EQ(checksumFormOf("a\\b\\c"), "a\\b\\c");
  EXPECT_EQ(checksumFormOf(""), "");
}

TEST(ContextPathInTheChecksum, PathCarriesTheSuffix) {
  VestraParentData context("kelvo\\\\usage", "kelvo", false);
  context.setVestraId("\\\\7");
  EXPECT_EQ(context.getCRCContext(), "kelvo\\usage/\\7");
}

TEST(RulesBlock, UserEnvironmentContextHasItsStyle) {
  EXPECT_EQ(VestraParentData("software_version_and_target_device", "project", true).getWdmString(),
            "        {\n"
            "            context=\"software_version_and_target_device\";\n"
            "            xml_map=\"software_version_and_target_device\";\n"
            "            html_map=\"software_version_and_target_device\";\n"
            "                html_format=\"UserEnvStyle\";\n"
            "        }");
}

TEST(RulesBlock, ProductContextHasItsStyle) {
  EXPECT_EQ(VestraParentData("tavlo\\\\usage", "tavlo", false).getWdmString(),
            "        {\n"
            "            context=\"tavlo\\\\usage\";\n"
            "            xml_map=\"tavlo\\\\usage\";\n"
            "            html_map=\"tavlo\\\\usage\";\n"
            "                html_format=\"FennoxStatsStyle\";\n"
            "        }");
}

TEST(RulesBlock, BlockCarriesTheSuffix) {
  VestraParentData context("tavlo\\\\usage", "tavlo", false);
  context.setVestraId("7");
  EXPECT_EQ(context.getWdmString(),
            "        {\n"
            "            context=\"tavlo\\\\usage/7\";\n"
            "            xml_map=\"tavlo\\\\usage/7\";\n"
            "            html_map=\"tavlo\\\\usage/7\";\n"
            "                html_format=\"FennoxStatsStyle\";\n"
            "        }");
}

TEST(RulesBlock, BlockDoesNotDependOnTheItems) {
  VestraParentData context("c", "p", true);
  context.addChild(new VestraAddData("k", "v", &context));
  EXPECT_EQ(context.getWdmString(),
            "        {\n"
            "            context=\"c\";\n"
            "            xml_map=\"c\";\n"
            "            html_map=\"c\";\n"
            "                html_format=\"UserEnvStyle\";\n"
            "        }");
}

}  // namespace
}  // namespace Oza
