#include <rapidcheck/gtest.h>

#include <array>
#include <memory>
#include <tuple>

#include "data/contexts.h"
#include "handler/report_script.h"
#include "support/report_check.h"
#include "support/test.h"

namespace Oza {
namespace {

struct Visits {
  const char* filled;
  const char* visited;
};

// One digit for each context, in their order.
constexpr Visits VISITS[] = {{"000000", "000000"}, {"111111", "111111"}, {"110000", "110000"},
                             {"010000", "110000"}, {"100000", "100001"}, {"100100", "100100"},
                             {"110100", "111100"}, {"101000", "111001"}, {"100001", "100001"},
                             {"110001", "110011"}, {"111001", "111001"}, {"000001", "000011"}};

TEST(VisitedContexts, AreAllButAdjacentEmptyOnes) {
  for (const auto& [filled, visited] : VISITS) {
    std::array<bool, CONTEXT_COUNT> isEmpty{};
    for (std::size_t i = 0; i < CONTEXT_COUNT; ++i) {
      isEmpty[i] = filled[i] == '0';
    }
    std::string digits;
    for (const bool isVisited : visitedContexts(isEmpty)) {
      digits += isVisited ? '1' : '0';
    }
    EXPECT_EQ(digits, visited) << "filled: " << filled;
  }
}

/// The six contexts of a report.
class SixContexts {
 public:
  SixContexts() {
    for (const ContextProfile& profile : CONTEXTS) {
      owned.push_back(std::make_unique<VestraParentData>(profile.path, profile.client, profile.userEnvStyle));
      nodes.push_back(owned.back().get());
    }
  }

  VestraParentData& at(std::size_t section) { return *owned[section]; }

  CollectedText text() const {
    CollectedText text;
    appendContexts(nodes, text);
    return text;
  }

 private:
  std::vector<std::unique_ptr<VestraParentData>> owned;
  std::vector<VestraDataInterface*> nodes;
};

/// A node of a host's class, which notes what it is asked for.
class NotingNode : public VestraDataInterface {
 public:
  NotingNode(std::string nodesName, std::string& noted) : name(std::move(nodesName)), notes(noted) {}

  std::string toTclString() override {
    notes += "line of " + name + "\n";
    return "# " + name + "\n";
  }
  std::string toCRCSegment() override {
    notes += "segment of " + name + "\n";
    return name;
  }
  std::string getClient() override {
    notes += "client of " + name + "\n";
    return {};
  }

 private:
  std::string name;
  std::string& notes;
};

TEST(CollectedText, AsksTheNodesOfAContextForTheirLinesBeforeTheirSegments) {
  std::string notes;
  SixContexts contexts;
  contexts.at(0).addChild(new NotingNode("first", notes));
  contexts.at(0).addChild(new VestraAddData("k", "v", &contexts.at(0)));
  contexts.at(0).addChild(new NotingNode("second", notes));
  contexts.at(1).addChild(new NotingNode("third", notes));
  contexts.text();
  EXPECT_EQ(notes,
            "line of first\nline of second\nsegment of first\nsegment of second\n"
            "line of third\nsegment of third\n");
}

/// A node that cannot be rendered.
class ThrowingNode : public VestraDataInterface {
 public:
  std::string toTclString() override { throw std::runtime_error("no line"); }
  std::string toCRCSegment() override { return {}; }
  std::string getClient() override { return {}; }
};

TEST(CollectedText, KeepsTheContextsBeforeANodeThatThrows) {
  SixContexts contexts;
  std::vector<VestraDataInterface*> nodes;
  for (std::size_t i = 0; i < CONTEXT_COUNT; ++i) {
    nodes.push_back(&contexts.at(i));
  }
  contexts.at(0).addChild(new VestraAddData("k", "v", &contexts.at(0)));
  contexts.at(1).addChild(new VestraAddData("k", "v", &contexts.at(1)));
  contexts.at(1).addChild(new ThrowingNode);
  CollectedText text;
  EXPECT_THROW(appendContexts(nodes, text), std::runtime_error);
  EXPECT_EQ(text.lines,
            "vestra_register_client -client project\n"
            "vestra_add_data -client project -key k -value \"v\""
            " -context \"software_version_and_target_device\"\n");
}

/// An item of a host's class.
class RenamedItem : public VestraAddData {
 public:
  using VestraAddData::VestraAddData;
  std::string getClient() override { return "host"; }
};

std::string withSingleBackslashes(std::string path) {
  const std::size_t pair = path.find("\\\\");
  return pair == std::string::npos ? path : path.erase(pair, 1);
}

/// What a report has of the same nodes, rendered one by one.
class Reference {
 public:
  std::vector<std::pair<std::string, std::string>> nodes[CONTEXT_COUNT];

  void addItem(std::size_t section, std::size_t sectionOfParent, const std::string& client,
               const std::string& key, const std::string& value) {
    const std::string path = CONTEXTS[sectionOfParent].path;
    nodes[section].emplace_back(std::string("vestra_add_data -client ")
                                    .append(client)
                                    .append(" -key " + key + " -value \"" + value + "\" -context \"")
                                    .append(path + "\"\n"),
                                key + value + client + withSingleBackslashes(path));
  }

  std::string lines() const {
    return walk([](const auto& node) { return node.first; },
                [](const std::string& client) { return "vestra_register_client -client " + client + "\n"; });
  }

  std::string checksumText() const {
    return walk([](const auto& node) { return node.second; },
                [](const std::string& client) { return client; });
  }

 private:
  template <typename TextOf, typename Registration>
  std::string walk(TextOf textOf, Registration registration) const {
    std::string text;
    for (std::size_t i = 0; i < CONTEXT_COUNT; ++i) {
      if (i != 5 && nodes[i].empty() && nodes[i + 1].empty()) {
        ++i;
        continue;
      }
      text += i % 2 == 0 ? registration(CONTEXTS[i].client) : "";
      for (const auto& node : nodes[i]) {
        text += textOf(node);
      }
    }
    return text;
  }
};

using Node = std::tuple<std::size_t, int, std::string, std::string>;

RC_GTEST_PROP(CollectedText, IsThatOfEachNodeByItself, (const std::vector<Node>& nodes, bool withHosts)) {
  SixContexts contexts;
  Reference reference;
  std::string notes;
  for (const auto& [anySection, anyKind, key, value] : nodes) {
    const std::size_t section = anySection % CONTEXT_COUNT;
    VestraParentData& context = contexts.at(section);
    const std::string client = CONTEXTS[section].client;
    switch (withHosts ? anyKind & 7 : 0) {
      case 1:
        context.addChild(new NotingNode(key, notes));
        reference.nodes[section].emplace_back("# " + key + "\n", key);
        break;
      case 2:
        context.addChild(new RenamedItem(key, value, &context));
        reference.addItem(section, section, "host", key, value);
        break;
      case 3:
        context.addChild(new VestraAddData(key, value, &contexts.at(5)));
        reference.addItem(section, 5, "tavlo", key, value);
        break;
      default:
        context.addChild(new VestraAddData(key, value, &context));
        reference.addItem(section, section, client, key, value);
    }
  }
  const CollectedText text = contexts.text();
  RC_ASSERT(text.lines == reference.lines());
  const std::string checksumText = reference.checksumText();
  RC_ASSERT(text.checksum.value() == zlibCrc32(checksumText.substr(0, checksumText.find('\0'))));
}

}  // namespace
}  // namespace Oza
