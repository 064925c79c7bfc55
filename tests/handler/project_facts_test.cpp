#include <gtest/gtest.h>

#include <string>

#include "handler/report_fixture.h"
#include "handler/vestra_handler.h"
#include "support/scoped_locale.h"

namespace Oza {
namespace {

constexpr Vestra::SectionType PROJECT = Vestra::SOFTWARE_VERSION_AND_TARGET_DEVICE;

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

/// An item that files another one at its end.
class BequeathingItem : public VestraAddData {
 public:
  BequeathingItem(const std::string& itemKey, VestraParentData* context, VestraHandler& into,
                  VestraDataInterface* other)
      : VestraAddData(itemKey, "", context), handler(into), next(other) {}
  ~BequeathingItem() override { handler.addData(next, PROJECT); }

 private:
  VestraHandler& handler;
  VestraDataInterface* next;
};

/// A handler whose project facts can be looked at and whose lost ones are seen.
class ProjectFacts : public testing::Test {
 protected:
  VestraAddData* add(const std::string& key, const std::string& name) {
    auto* item = new EndingItem(key, name, &context, ends);
    handler->addData(item, PROJECT);
    return item;
  }

  static std::string keyOf(VestraAddData* item) {
    const std::string line = item->toTclString();
    const std::size_t begin = line.find("-key ") + 5;
    return line.substr(begin, line.find(" -value") - begin);
  }

  std::string ends;
  VestraParentData context{"context", "client", true};
  std::unique_ptr<VestraHandler> handler = std::make_unique<VestraHandler>();
};

TEST_F(ProjectFacts, FirstItemWithAKeyIsKept) {
  add("tool_flow", "a");
  add("tool_flow", "b");
  add("tool_flow", "c");
  handler->uniqueAndReorderData();
  EXPECT_EQ(ends, "bc");
  handler.reset();
  EXPECT_EQ(ends, "bca");
}

TEST_F(ProjectFacts, KeysThatDifferByLetterCaseAreOne) {
  VestraAddData* kept = add("Project_ID", "a");
  add("project_id", "b");
  handler->uniqueAndReorderData();
  EXPECT_EQ(ends, "b");
  EXPECT_EQ(keyOf(kept), "project_id");
}

TEST_F(ProjectFacts, KeysThatTheReportDoesNotKnowAreFreed) {
  add("unknown", "a");
  add("", "b");
  add("beta_", "c");
  add("bet", "d");
  add(" beta", "e");
  add("beta", "f");
  handler->uniqueAndReorderData();
  EXPECT_EQ(ends.size(), 5U);
  EXPECT_EQ(ends.find('f'), std::string::npos);
}

TEST_F(ProjectFacts, FactThatComesAtTheEndOfAnotherIsKept) {
  auto* late = new EndingItem("beta", "late", &context, ends);
  handler->addData(new BequeathingItem("unknown", &context, *handler, late), PROJECT);
  handler->uniqueAndReorderData();
  EXPECT_EQ(ends, "");
  handler.reset();
  EXPECT_EQ(ends, "late");
}

TEST_F(ProjectFacts, StandInTheReportsOrder) {
  add("project_iteration", "o");
  add("project_id", "n");
  add("random_id", "m");
  add("target_speed", "l");
  add("target_package", "k");
  add("target_device", "j");
  add("target_family", "i");
  add("route_design", "h");
  add("beta", "g");
  add("tool_flow", "f");
  add("registration_id", "e");
  add("os_platform", "d");
  add("build_version", "c");
  add("product_version", "b");
  add("date_generated", "a");
  handler->uniqueAndReorderData();
  EXPECT_EQ(ends, "");
  handler.reset();
  EXPECT_EQ(ends, "abcdefghijklmno");
}

TEST_F(ProjectFacts, AreTheSameAfterASecondTime) {
  add("beta", "b");
  add("os_platform", "a");
  handler->uniqueAndReorderData();
  handler->uniqueAndReorderData();
  EXPECT_EQ(ends, "");
  handler.reset();
  EXPECT_EQ(ends, "ab");
}

TEST_F(ProjectFacts, AddedAfterTheFirstTimeFollowTheSameRules) {
  add("beta", "b");
  handler->uniqueAndReorderData();
  add("BETA", "x");
  add("unknown", "y");
  add("os_platform", "z");
  handler->uniqueAndReorderData();
  EXPECT_EQ(ends, "xzy") << "os_platform has been filled in by the first time";
}

TEST_F(ProjectFacts, OfOtherSectionsAreUntouched) {
  for (const auto section : {Vestra::USER_ENVIRONMENT, Vestra::KELVO_COMMAND_LINE_OPTIONS,
                             Vestra::KELVO_USAGE, Vestra::TAVLO_COMMAND_LINE_OPTIONS, Vestra::TAVLO_USAGE}) {
    auto* item = new EndingItem("Key", "k", &context, ends);
    handler->addData(item, section);
    handler->addData(new EndingItem("Key", "k", &context, ends), section);
    handler->uniqueAndReorderData();
    EXPECT_EQ(ends, "");
    EXPECT_EQ(keyOf(item), "Key");
  }
}

TEST_F(ProjectFacts, AreLoweredByTheGlobalLocale) {
  VestraAddData* item = add("Qroject_Id", "value");
  const vestra_test::ScopedLocale odd(vestra_test::oddLettersLocale());
  handler->uniqueAndReorderData();
  EXPECT_EQ(keyOf(item), "project_id");
}

/// The same, as the script has them.
class ProjectFactsInTheScript : public vestra_test::ReportFixture {
 protected:
  std::string facts() {
    EXPECT_TRUE(handler.prepareVestraData());
    return itemsOf("software_version_and_target_device");
  }
};

TEST_F(ProjectFactsInTheScript, AreTheHostsOrNotApplicable) {
  writeIdentity("0\n0\n7\n0\nid\n");
  add("Target_Speed", "-2", PROJECT);
  add("unknown", "x", PROJECT);
  add("DATE_GENERATED", "today", PROJECT);
  add("date_generated", "tomorrow", PROJECT);
  add("beta", "", PROJECT);
  EXPECT_EQ(facts(),
            "date_generated=today\n"
            "product_version=not_applicable\n"
            "build_version=not_applicable\n"
            "os_platform=not_applicable\n"
            "registration_id=not_applicable\n"
            "tool_flow=not_applicable\n"
            "beta=\n"
            "route_design=not_applicable\n"
            "target_family=not_applicable\n"
            "target_device=not_applicable\n"
            "target_package=not_applicable\n"
            "target_speed=-2\n"
            "random_id=not_applicable\n"
            "project_id=id\n"
            "project_iteration=7\n");
}

TEST_F(ProjectFactsInTheScript, HostsIdentifierAndIterationComeFirst) {
  writeIdentity("0\n0\n7\n0\nid\n");
  add("Project_Id", "host's", PROJECT);
  add("project_iteration", "host's too", PROJECT);
  const std::string all = facts();
  EXPECT_NE(all.find("project_id=host's\n"), std::string::npos) << all;
  EXPECT_NE(all.find("project_iteration=host's too\n"), std::string::npos) << all;
}

TEST_F(ProjectFactsInTheScript, ToolFlowOfANewProjectWithAHostsIdentifierIsNoted) {
  add("project_id", "host's", PROJECT);
  EXPECT_NE(facts().find("tool_flow=kelvo_orbelo\n"), std::string::npos);
}

TEST_F(ProjectFactsInTheScript, ToolFlowOfTheHostWins) {
  add("project_id", "host's", PROJECT);
  add("Tool_Flow", "own", PROJECT);
  EXPECT_NE(facts().find("tool_flow=own\n"), std::string::npos);
}

TEST_F(ProjectFactsInTheScript, AnyFlagButZeroNotesTheToolFlow) {
  writeIdentity("0\n0\n7\n-1\nid\n");
  EXPECT_NE(facts().find("tool_flow=kelvo_orbelo\n"), std::string::npos);
}

}  // namespace
}  // namespace Oza
