#include "handler/project_facts.h"

#include <regex>
#include <sstream>

#include "handler/report_fixture.h"
#include "identity/fields.h"
#include "support/test.h"

namespace Oza {
namespace {

/// An item that notes its end.
class EndingItem : public VestraAddData {
 public:
  EndingItem(const std::string& itemKey, const std::string& itemValue, VestraParentData* context,
             std::string& ends)
      : VestraAddData(itemKey, itemValue, context), name(itemValue), endsSeen(ends) {}
  ~EndingItem() override { endsSeen += name; }

 private:
  std::string name;
  std::string& endsSeen;
};

/// Those of "key=value|key=value".
std::vector<std::pair<std::string, std::string>> itemsIn(const std::string& text) {
  std::vector<std::pair<std::string, std::string>> items;
  for (const std::string& item : fieldsOf(text, '|')) {
    if (!item.empty()) {
      items.emplace_back(item.substr(0, item.find('=')), item.substr(item.find('=') + 1));
    }
  }
  return items;
}

/// A context whose items are written and read so.
struct Facts {
  explicit Facts(const std::string& items) { add(items); }

  void add(const std::string& items) {
    for (const auto& [key, value] : itemsIn(items)) {
      context.addChild(new EndingItem(key, value, &context, ends));
    }
  }

  /// Those whose value is known.
  std::string known() {
    std::string items;
    for (VestraDataInterface* child : NodeAccess::children(context)) {
      auto& item = static_cast<VestraAddData&>(*child);
      if (NodeAccess::value(item) != "not_applicable") {
        items += (items.empty() ? "" : "|") + NodeAccess::key(item) + "=" + NodeAccess::value(item);
      }
    }
    return items;
  }

  std::string ends;
  VestraParentData context{"context", "client", true};
};

TEST(ProjectFacts, AreOneOfEachKeyInTheReportsOrder) {
  const struct {
    const char* name;
    const char* items;
    const char* facts;
    const char* freed;
  } rows[] = {
      {"none", "", "", ""},
      {"a key three times", "beta=a|beta=b|beta=c", "beta=a", "bc"},
      {"two letter cases", "Project_ID=a|project_id=b", "project_id=a", "b"},
      {"unknown keys", "unknown=a|=b|beta_=c|bet=d| beta=e|beta=f", "beta=f", "bedca"},
      {"all keys, from the last to the first",
       "project_iteration=o|project_id=n|random_id=m|target_speed=l|target_package=k|target_device=j|"
       "target_family=i|route_design=h|beta=g|tool_flow=f|registration_id=e|os_platform=d|build_version=c|"
       "product_version=b|date_generated=a",
       "date_generated=a|product_version=b|build_version=c|os_platform=d|registration_id=e|tool_flow=f|"
       "beta=g|route_design=h|target_family=i|target_device=j|target_package=k|target_speed=l|random_id=m|"
       "project_id=n|project_iteration=o",
       ""},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    Facts facts(row.items);
    for (int times = 0; times < 2; ++times) {
      orderProjectFacts(facts.context);
      EXPECT_EQ(facts.known(), row.facts);
      EXPECT_EQ(facts.ends, row.freed);
      EXPECT_THAT(NodeAccess::children(facts.context), SizeIs(15));
    }
  }
}

TEST(ProjectFacts, AddedAfterTheFirstTimeFollowTheSameRules) {
  Facts facts("beta=b");
  orderProjectFacts(facts.context);
  facts.add("BETA=x|unknown=y|os_platform=z");
  orderProjectFacts(facts.context);
  EXPECT_EQ(facts.ends, "xzy") << "os_platform has been filled in by the first time";
}

/// An item that files another one at its end.
class BequeathingItem : public VestraAddData {
 public:
  BequeathingItem(VestraParentData* context, VestraDataInterface* other)
      : VestraAddData("unknown", "", context), heir(*context), next(other) {}
  ~BequeathingItem() override { heir.addChild(next); }

 private:
  VestraParentData& heir;
  VestraDataInterface* next;
};

TEST(ProjectFacts, IncludeOneThatIsAddedByTheEndOfAnother) {
  Facts facts("");
  auto* late = new EndingItem("beta", "late", &facts.context, facts.ends);
  facts.context.addChild(new BequeathingItem(&facts.context, late));
  orderProjectFacts(facts.context);
  EXPECT_EQ(facts.known(), "beta=late");
  EXPECT_EQ(facts.ends, "");
}

TEST(ProjectFacts, HaveKeysThatAreLoweredByTheGlobalLocale) {
  Facts facts("Qroject_Id=value");
  const ScopedLocale odd(oddLettersLocale());
  orderProjectFacts(facts.context);
  EXPECT_EQ(facts.known(), "project_id=value");
}

TEST(HostsProjectId, IsTheValueOfTheFirstItemWithTheKey) {
  const struct {
    const char* name;
    const char* items;
    const char* identifier;
    const char* itemsAfter;
  } rows[] = {
      {"no items", "", "", ""},
      {"no item with the key", "Project=1|PROJECT_IDS=2| project_id=3|\xc3\x89\xff=4", "",
       "project=1|project_ids=2| project_id=3|\xc3\x89\xff=4"},
      {"two", "Before=A|pRoJeCt_Id=B|After=C|project_id=D", "B",
       "before=A|project_id=B|After=C|project_id=D"},
      {"an empty one first", "project_id=|project_id=B", "", "project_id=|project_id=B"},
  };
  for (const auto& row : rows) {
    Facts facts(row.items);
    EXPECT_EQ(hostProjectId(facts.context), row.identifier) << row.name;
    EXPECT_EQ(facts.known(), row.itemsAfter) << row.name;
  }
}

TEST(HostsProjectId, HasAKeyThatIsLoweredByTheGlobalLocale) {
  Facts facts("QROJECT_ID=found");
  EXPECT_EQ(hostProjectId(facts.context), "");
  facts.add("QROJECT_ID=later");
  const ScopedLocale odd(oddLettersLocale());
  EXPECT_EQ(hostProjectId(facts.context), "later");
}

class FactsInTheScript : public ReportFixture {
 protected:
  /// The script's items of a context whose value is known, as "key=value|key=value".
  std::string itemsOf(const std::string& context) const {
    const std::regex item("vestra_add_data -client project -key (\\S*) -value \"(.*)\" -context \"" +
                          context + "\"");
    std::string items;
    std::istringstream lines(script());
    for (std::string line; std::getline(lines, line);) {
      std::smatch parts;
      if (std::regex_match(line, parts, item) && parts[2] != "not_applicable") {
        items += (items.empty() ? "" : "|") + parts.str(1) + "=" + parts.str(2);
      }
    }
    return items;
  }
};

TEST_F(FactsInTheScript, ComeFromTheHostThenTheSupportLibraryThenTheIdentity) {
  const std::string known = identityText("0", "0", "7", "0", "id");
  const std::string knownFacts = "|project_id=id|project_iteration=7";
  const struct {
    const char* name;
    std::optional<std::string> identity;
    const char* hosts;
    std::string environment;
    std::string facts;
  } rows[] = {
      {"the host's", known, "Beta=|unknown=x", "", "beta=" + knownFacts},
      {"a key of the support library", known, "", "#beta#yes", "beta=yes" + knownFacts},
      {"the same twice", known, "", "#beta#yes#BETA#no", "beta=yes" + knownFacts},
      {"the host's too", known, "beta=own", "#beta#yes", "beta=own" + knownFacts},
      {"an identifier of the support library", known, "", "#project_id#its#project_iteration#99",
       "project_id=its|project_iteration=99"},
      {"one of the host", known, "Project_Id=own|project_iteration=too", "",
       "project_id=own|project_iteration=too"},
      {"iteration -1", identityText("0", "0", "-1", "0", "id"), "", "",
       "project_id=id|project_iteration=18446744073709551615"},
      {"a large iteration", identityText("0", "0", "1234567", "0", "id"), "", "",
       "project_id=id|project_iteration=1234567"},
      {"a NUL in the identifier", identityText("0", "0", "7", "0", "front\0back"s), "", "",
       "project_id=front|project_iteration=7"},
      {"an empty identity", "", "", "", "project_id=|project_iteration=1"},
      {"a new project", std::nullopt, "project_id=own", "",
       "tool_flow=kelvo_orbelo|project_id=own|project_iteration=1"},
      {"a tool flow of the host", std::nullopt, "project_id=own|Tool_Flow=own", "",
       "tool_flow=own|project_id=own|project_iteration=1"},
      {"any flow but 0", identityText("0", "0", "7", "-1", "id"), "", "",
       "tool_flow=kelvo_orbelo" + knownFacts},
  };
  const ScopedLocale grouping(digitGroupingLocale());
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    unlink(file().c_str());
    if (row.identity) {
      writeIdentity(*row.identity);
    }
    VestraHandler handlerOfTheRow;
    handlerOfTheRow.setProjectDirectory(project.path());
    for (const auto& [key, value] : itemsIn(row.hosts)) {
      handlerOfTheRow.addData(key, value, Vestra::SOFTWARE_VERSION_AND_TARGET_DEVICE);
    }
    handlerOfTheRow.addData("Host", "0", Vestra::USER_ENVIRONMENT);
    library.describeEnvironment("a#1#b#2#c#3#d#4#e#5#f#6" + row.environment);
    EXPECT_TRUE(handlerOfTheRow.prepareVestraData());
    EXPECT_EQ(itemsOf("software_version_and_target_device"), row.facts);
    EXPECT_EQ(itemsOf("user_environment"), "Host=0|a=1|b=2|c=3|d=4|e=5|f=6");
  }
}

}  // namespace
}  // namespace Oza
