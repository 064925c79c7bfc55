#include <vestra/vestra_data.h>

#include "support/test.h"

namespace Oza {
namespace {

/// A context of a host's class, which counts how often it is asked for its client.
class CountingContext : public VestraParentData {
 public:
  CountingContext() : VestraParentData("c", "p", true) {}

  std::string getClient() override { return "p" + std::to_string(++asked); }

  int asked = 0;
};

TEST(HostsContext, IsAskedForItsClientOnceForEachItem) {
  CountingContext context;
  context.addChild(new VestraAddData("a", "1", &context));
  context.addChild(new VestraAddData("b", "2", &context));
  EXPECT_EQ(context.toTclString(),
            "vestra_add_data -client p1 -key a -value \"1\" -context \"c\"\n"
            "vestra_add_data -client p2 -key b -value \"2\" -context \"c\"\n");
  EXPECT_EQ(context.toCRCSegment(), "a1p3cb2p4c");
  EXPECT_EQ(context.asked, 4);
}

TEST(HostsContext, IsNotAskedForItsClientWhileItIsEmpty) {
  CountingContext context;
  EXPECT_EQ(context.toTclString() + context.toCRCSegment(), "");
  EXPECT_EQ(context.asked, 0);
}

/// A node that does something while it is rendered, and contributes nothing.
class ActingNode : public VestraDataInterface {
 public:
  explicit ActingNode(std::function<void()> action) : act(std::move(action)) {}

  std::string toTclString() override { return acted(); }
  std::string toCRCSegment() override { return acted(); }
  std::string getClient() override { return {}; }

 private:
  std::string acted() {
    act();
    return {};
  }

  std::function<void()> act;
};

/// A context with an item, a node that acts, and another item.
struct ContextWithAction {
  explicit ContextWithAction(const std::function<void()>& action) {
    context.addChild(new VestraAddData("a", "1", &context));
    context.addChild(new ActingNode(action));
    context.addChild(new VestraAddData("b", "2", &context));
  }

  VestraParentData context{"c", "p", true};
};

TEST(ChangeWhileRendering, OfTheSuffixIsSeenByTheItemsBehind) {
  std::string suffix;
  ContextWithAction filled([&] { filled.context.setVestraId(suffix += "7"); });
  EXPECT_EQ(filled.context.toTclString(),
            "vestra_add_data -client p -key a -value \"1\" -context \"c\"\n"
            "vestra_add_data -client p -key b -value \"2\" -context \"c/7\"\n");
  EXPECT_EQ(filled.context.toCRCSegment(), "a1pc/7b2pc/77");
}

TEST(ChangeWhileRendering, OfATextConstantIsSeenByTheItemsBehind) {
  const char* const before = PARAM_VALUE;
  ContextWithAction filled([] { PARAM_VALUE = "-v"; });
  EXPECT_EQ(filled.context.toTclString(),
            "vestra_add_data -client p -key a -value \"1\" -context \"c\"\n"
            "vestra_add_data -client p -key b -v \"2\" -context \"c\"\n");
  PARAM_VALUE = before;
}

TEST(ChangeWhileRendering, AddsAnItemAtTheEnd) {
  ContextWithAction filled([&] { filled.context.addChild(new VestraAddData("n", "3", &filled.context)); });
  filled.context.toTclString();
  EXPECT_EQ(filled.context.toCRCSegment(), "a1pcb2pcn3pcn3pc");
}

}  // namespace
}  // namespace Oza
