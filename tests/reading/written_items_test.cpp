#include "reading/written_items.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <ctime>

namespace vestra::reading {

bool operator==(const WrittenItem& a, const WrittenItem& b) {
  return a.client == b.client && a.context == b.context && a.key == b.key && a.value == b.value &&
         a.line == b.line;
}

std::ostream& operator<<(std::ostream& out, const WrittenItem& item) {
  return out << item.line << ": " << scriptLineOf(item);
}

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const std::string INIT = "vestra_init -vestra_dir /p/vestra/\n";
const std::string TRANSMIT = "vestra_transmit -clientid 1 -regid \"R\"\nvestra_terminate\n";

std::string added(const std::string& key, const std::string& value, const std::string& client = "kelvo",
                  const std::string& context = "kelvo\\\\usage") {
  return "vestra_add_data -client " + client + " -key " + key + " -value \"" + value + "\" -context \"" +
         context + "\"\n";
}

std::string scriptOf(const std::string& items) { return INIT + items + TRANSMIT; }

std::vector<WrittenItem> itemsIn(const std::string& items) { return itemsWrittenIn(scriptOf(items)); }

TEST(WrittenItems, AWrittenItemHasItsTextsAndItsLine) {
  EXPECT_THAT(
      itemsIn(added("a", "1") + added("b", "two\nlines") + added("c", "", "project", "user_environment")),
      ElementsAre(WrittenItem{"kelvo", "kelvo\\usage", "a", "1", 2},
                  WrittenItem{"kelvo", "kelvo\\usage", "b", "two\nlines", 3},
                  WrittenItem{"project", "user_environment", "c", "", 5}));
}

TEST(WrittenItems, AValueMayHoldAnythingButTheEndOfACommand) {
  const std::string value = "a\"b\" -context \"kelvo\\\\usage\" [x] $y \\ {\nvestra_add_data";
  EXPECT_THAT(itemsIn(added("k", value)), ElementsAre(WrittenItem{"kelvo", "kelvo\\usage", "k", value, 2}));
}

TEST(WrittenItems, AValueThatImitatesTheEndOfACommandIsSeveralItems) {
  EXPECT_THAT(itemsIn(added("k", "v\" -context \"kelvo\\\\usage\"\n" + added("fake", "f"))).front(),
              (WrittenItem{"kelvo", "kelvo\\usage", "k", "v", 2}));
}

TEST(WrittenItems, AContextMayHaveAnIdentifier) {
  EXPECT_THAT(itemsIn(added("k", "v", "tavlo", "tavlo\\\\usage/7")),
              ElementsAre(WrittenItem{"tavlo", "tavlo\\usage/7", "k", "v", 2}));
  EXPECT_THAT(itemsIn(added("k", "v", "tavlo", "tavlo\\\\usage_7")), IsEmpty());
}

TEST(WrittenItems, AScriptThatIsCutKeepsThoseThatAreWhole) {
  EXPECT_THAT(itemsWrittenIn(INIT + added("a", "1")),
              ElementsAre(WrittenItem{"kelvo", "kelvo\\usage", "a", "1", 2}));
  const std::string whole = INIT + added("a", "1") + added("b", "2");
  EXPECT_EQ(itemsWrittenIn(whole.substr(0, whole.size() - 1)).size(), 1u);
  EXPECT_THAT(itemsWrittenIn(""), IsEmpty());
}

TEST(WrittenItems, AnUnknownClientOrContextHasNoItems) {
  EXPECT_THAT(itemsIn(added("k", "v", "other")), IsEmpty());
  EXPECT_THAT(itemsIn(added("k", "v", "tavlo", "kelvo\\\\usage")), IsEmpty());
}

RC_GTEST_PROP(WrittenItems, TheLineOfAnItemIsReadAsThatItem,
              (const std::string& key, const std::string& value)) {
  const WrittenItem item{"kelvo", "kelvo\\usage", key, value, 1};
  RC_PRE(key.find(" -value \"") == std::string::npos);
  RC_ASSERT(itemsWrittenIn(scriptLineOf(item)) == std::vector<WrittenItem>{item});
}

/// Processor time, so that a busy machine does not count.
double secondsToRead(const std::string& script) {
  const std::clock_t begin = std::clock();
  itemsWrittenIn(script);
  return static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC;
}

TEST(WrittenItems, AHundredThousandItemsAreReadInLittleTimeHoweverTheyAreDamaged) {
  std::string whole;
  std::string withoutEnd;
  std::string withoutValue;
  for (int i = 0; i < 100'000; ++i) {
    const std::string line = added("key" + std::to_string(i), "value", "kelvo",
                                   i % 2 == 0 ? "kelvo\\\\usage" : "kelvo\\\\command_line_options");
    whole += line;
    withoutEnd += line.substr(0, line.size() - 2) + "\n";
    withoutValue += line.substr(0, line.find(" -value")) + "\n";
  }
  for (const std::string& script : {whole, withoutEnd, withoutValue}) {
    EXPECT_LT(secondsToRead(script), 2);
  }
}

TEST(HandedItems, AHandedValueEndsWhereItEndsWhateverItImitates) {
  const std::string value =
      "v\" -context \"kelvo\\\\usage\"\nvestra_add_data -client kelvo -key fake -value \"f";
  const std::vector<WrittenItem> handed{{"kelvo", "kelvo\\usage", "k", value, 0}};
  EXPECT_THAT(itemsWrittenIn(scriptOf(added("k", value) + added("good", "1")), handed),
              ElementsAre(WrittenItem{"kelvo", "kelvo\\usage", "k", value, 2},
                          WrittenItem{"kelvo", "kelvo\\usage", "good", "1", 4}));
}

TEST(HandedItems, AProjectFactIsTheFirstWithItsKeyInAnyCase) {
  const std::string context = "software_version_and_target_device";
  const std::string value =
      "1\" -context \"" + context + "\"\nvestra_add_data -client project -key b -value \"2";
  const std::vector<WrittenItem> handed{{"project", context, "Beta", value, 0},
                                        {"project", context, "beta", "3", 0}};
  EXPECT_THAT(itemsWrittenIn(scriptOf(added("beta", value, "project", context)), handed),
              ElementsAre(WrittenItem{"project", context, "beta", value, 2}));
}

RC_GTEST_PROP(HandedItems, AnyTextsAreReadAsTheyWereHanded, ()) {
  const auto texts =
      rc::gen::container<std::string>(rc::gen::elementOf(std::string("\" \n;-kvaluecontext\\")));
  std::vector<WrittenItem> handed;
  std::string lines;
  std::size_t line = 2;
  for (int i = *rc::gen::inRange(0, 9); i > 0; --i) {
    handed.push_back({"kelvo", "kelvo\\usage", *texts, *texts, line});
    lines += scriptLineOf(handed.back());
    line = 2 + static_cast<std::size_t>(std::count(lines.begin(), lines.end(), '\n'));
  }
  RC_ASSERT(itemsWrittenIn(scriptOf(lines), handed) == handed);
}

}  // namespace
}  // namespace vestra::reading
