#include <vestra/vestra_data.h>

#include "support/test.h"

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

TEST(Context, WithoutChildrenIsRenderedAsNothing) {
  VestraParentData context("user_environment", "project", true);
  EXPECT_EQ(context.toTclString(), "");
  EXPECT_EQ(context.toCRCSegment(), "");
}

TEST(Context, IsRenderedAsItsItemsInTheirOrder) {
  VestraParentData context("c", "p", true);
  context.addChild(nullptr);
  context.addChild(new VestraAddData("k", "3", &context));
  context.addChild(nullptr);
  context.addChild(new VestraAddData("a", "1", &context));
  context.addChild(new VestraAddData("k", "2", &context));
  context.addChild(nullptr);
  EXPECT_EQ(context.toTclString(),
            "vestra_add_data -client p -key k -value \"3\" -context \"c\"\n"
            "vestra_add_data -client p -key a -value \"1\" -context \"c\"\n"
            "vestra_add_data -client p -key k -value \"2\" -context \"c\"\n");
  EXPECT_EQ(context.toCRCSegment(), "k3pca1pck2pc");
}

TEST(Context, AmongAnothersChildrenContributesItsOwnLines) {
  VestraParentData outer("outer", "o", true);
  auto* inner = new VestraParentData("inner", "i", true);
  outer.addChild(inner);
  inner->addChild(new VestraAddData("k", "v", inner));
  EXPECT_EQ(outer.toTclString(), "vestra_add_data -client i -key k -value \"v\" -context \"inner\"\n");
  EXPECT_EQ(outer.toCRCSegment(), "kviinner");
}

TEST(Context, RendersAndFreesItsChildrenThroughTheirInterface) {
  std::string ends;
  auto* context = new VestraParentData("c", "p", true);
  context->addChild(new NotedNode("1", ends));
  context->addChild(nullptr);
  context->addChild(new NotedNode("2", ends));
  context->addChild(new NotedNode("3", ends));
  EXPECT_EQ(context->getClient(), "p");
  EXPECT_EQ(context->toTclString(), "<1><2><3>");
  EXPECT_EQ(context->toCRCSegment(), "(1)(2)(3)");
  EXPECT_EQ(ends, "");
  VestraDataInterface* node = context;
  delete node;
  EXPECT_EQ(ends, "123");
}

TEST(Context, HasItsPathWithItsSuffix) {
  const struct {
    const char* path;
    const char* suffix;
    const char* whole;
    const char* inTheChecksum;
  } rows[] = {
      {"kelvo\\\\usage", "", "kelvo\\\\usage", "kelvo\\usage"},
      {"kelvo\\\\usage", "7", "kelvo\\\\usage/7", "kelvo\\usage/7"},
      {"kelvo\\\\usage", "\\\\8/9", "kelvo\\\\usage/\\\\8/9", "kelvo\\usage/\\8/9"},
      {"", "", "", ""},
      {"", "7", "/7", "/7"},
      {"user_environment", "", "user_environment", "user_environment"},
      // Pairs of backslashes do not overlap.
      {"a\\b\\c", "", "a\\b\\c", "a\\b\\c"},
      {"\\", "", "\\", "\\"},
      {"\\\\\\", "", "\\\\\\", "\\\\"},
      {"\\\\\\\\", "", "\\\\\\\\", "\\\\"},
      {"\\\\\\\\\\", "", "\\\\\\\\\\", "\\\\\\"},
  };
  for (const auto& row : rows) {
    VestraParentData context(row.path, "p", true);
    context.setVestraId("replaced");
    context.setVestraId(row.suffix);
    EXPECT_EQ(context.getContext(), row.whole);
    EXPECT_EQ(context.getFormattedContext(), row.whole);
    EXPECT_EQ(context.getWdmContext(), row.whole);
    EXPECT_EQ(context.getCRCContext(), row.inTheChecksum);
  }
}

TEST(RulesBlock, NamesTheContextAndItsStyle) {
  VestraParentData project("user_environment", "project", true);
  EXPECT_EQ(project.getWdmString(),
            "        {\n"
            "            context=\"user_environment\";\n"
            "            xml_map=\"user_environment\";\n"
            "            html_map=\"user_environment\";\n"
            "                html_format=\"UserEnvStyle\";\n"
            "        }");
  VestraParentData product("tavlo\\\\usage", "tavlo", false);
  product.addChild(new VestraAddData("k", "v", &product));
  product.setVestraId("7");
  EXPECT_EQ(product.getWdmString(),
            "        {\n"
            "            context=\"tavlo\\\\usage/7\";\n"
            "            xml_map=\"tavlo\\\\usage/7\";\n"
            "            html_map=\"tavlo\\\\usage/7\";\n"
            "                html_format=\"FennoxStatsStyle\";\n"
            "        }");
}

}  // namespace
}  // namespace Oza
