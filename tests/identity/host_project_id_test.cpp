#include <gtest/gtest.h>

#include <string>

#include "handler/vestra_handler.h"
#include "support/scoped_locale.h"

namespace Oza {
namespace {

constexpr Vestra::SectionType VERSION_SECTION = Vestra::SOFTWARE_VERSION_AND_TARGET_DEVICE;

/// A handler with items that can be looked at.
class HostProjectId : public testing::Test {
 protected:
  VestraAddData* add(const std::string& key, const std::string& value) {
    auto* item = new VestraAddData(key, value, &context);
    handler.addData(item, VERSION_SECTION);
    return item;
  }

  /// The item's key and value, as its checksum segment has them.
  static std::string shown(VestraAddData* item) {
    const std::string segment = item->toCRCSegment();
    return segment.substr(0, segment.size() - std::string("<client><context>").size());
  }

  VestraParentData context{"<context>", "<client>", true};
  VestraHandler handler;
};

TEST_F(HostProjectId, HostsIdentifierIsEmptyWithoutItems) { EXPECT_EQ(handler.getOrbeloProjectId(), ""); }

TEST_F(HostProjectId, HostsIdentifierIsEmptyWhenNoKeyMatches) {
  add("project", "1");
  add("project_ids", "2");
  add(" project_id", "3");
  EXPECT_EQ(handler.getOrbeloProjectId(), "");
}

TEST_F(HostProjectId, HostsIdentifierIsTheValueOfTheFirstItemWithTheKey) {
  add("other", "0");
  add("project_id", "first");
  add("project_id", "second");
  EXPECT_EQ(handler.getOrbeloProjectId(), "first");
}

TEST_F(HostProjectId, HostsIdentifierIsFoundInAnyLetterCase) {
  add("pRoJeCt_Id", "mixed");
  EXPECT_EQ(handler.getOrbeloProjectId(), "mixed");
}

TEST_F(HostProjectId, EmptyFirstOneHidesALaterOne) {
  add("project_id", "");
  add("project_id", "second");
  EXPECT_EQ(handler.getOrbeloProjectId(), "");
}

TEST_F(HostProjectId, HostsIdentifierOfOtherSectionsIsNotLookedFor) {
  handler.addData("project_id", "elsewhere", Vestra::USER_ENVIRONMENT);
  handler.addData("project_id", "elsewhere", Vestra::KELVO_USAGE);
  EXPECT_EQ(handler.getOrbeloProjectId(), "");
}

TEST_F(HostProjectId, HostsIdentifierLeavesTheKeysItLookedAtInSmallLetters) {
  VestraAddData* before = add("Before_", "A");
  VestraAddData* match = add("PROJECT_ID", "B");
  VestraAddData* after = add("After_", "C");
  EXPECT_EQ(handler.getOrbeloProjectId(), "B");
  EXPECT_EQ(shown(before), "before_A");
  EXPECT_EQ(shown(match), "project_idB");
  EXPECT_EQ(shown(after), "After_C");
}

TEST_F(HostProjectId, HostsIdentifierLeavesAllKeysInSmallLettersWhenNoneMatches) {
  VestraAddData* first = add("First_", "A");
  VestraAddData* last = add("LAST_", "B");
  handler.getOrbeloProjectId();
  EXPECT_EQ(shown(first), "first_A");
  EXPECT_EQ(shown(last), "last_B");
}

TEST_F(HostProjectId, SmallLettersAreThoseOfTheGlobalLocale) {
  VestraAddData* item = add("QROJECT_ID", "odd");
  EXPECT_EQ(handler.getOrbeloProjectId(), "");
  EXPECT_EQ(shown(item), "qroject_idodd");

  const vestra_test::ScopedLocale odd(vestra_test::oddLettersLocale());
  add("QROJECT_ID", "found");
  EXPECT_EQ(handler.getOrbeloProjectId(), "found");
}

TEST_F(HostProjectId, BytesAbove127AreNoLetters) {
  VestraAddData* item = add("\xc3\x89\xff", "v");
  handler.getOrbeloProjectId();
  EXPECT_EQ(shown(item), "\xc3\x89\xffv");
}

}  // namespace
}  // namespace Oza
