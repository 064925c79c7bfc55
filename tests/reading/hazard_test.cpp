#include "reading/hazard.h"

#include <gtest/gtest.h>

namespace vestra::reading {
namespace {

std::string reasonFor(const std::string& key, const std::string& value) {
  return hazardOf({"kelvo", "kelvo\\usage", key, value, 0}).value_or("none");
}

TEST(Hazard, AnOrdinaryItemHasNoHazard) {
  EXPECT_EQ(reasonFor("runs", "2 words; {braces} ] and\na line feed"), "none");
  EXPECT_EQ(reasonFor("a.b-c", ""), "none");
}

TEST(Hazard, BytesThatTheInterpreterLeavesAloneAreNoHazard) {
  std::string value;
  for (int byte = 0; byte < 256; ++byte) {
    if (std::string("\"\\$[").find(static_cast<char>(byte)) == std::string::npos) {
      value += static_cast<char>(byte);
    }
  }
  EXPECT_EQ(reasonFor("k", value), "none");
}

TEST(Hazard, AValueThatTheInterpreterChangesIsAHazard) {
  EXPECT_EQ(reasonFor("k", "a\"b"), "the value holds a double quote, which ends it");
  EXPECT_EQ(reasonFor("k", "a[b]"), "the value holds an opening bracket, which begins a command");
  EXPECT_EQ(reasonFor("k", "$HOME"), "the value holds a dollar sign, which begins a variable");
  EXPECT_EQ(reasonFor("k", "C:\\temp"), "the value holds a backslash, which changes what follows it");
}

TEST(Hazard, AKeyThatTheInterpreterChangesIsAHazard) {
  EXPECT_EQ(reasonFor("", "v"), "the key is empty");
  EXPECT_EQ(reasonFor("a b", "v"), "the key holds white space, which ends it");
  EXPECT_EQ(reasonFor("a;b", "v"), "the key holds a semicolon, which ends the command");
  EXPECT_EQ(reasonFor("\"a", "v"), "the key begins with a double quote");
  EXPECT_EQ(reasonFor("{a}", "v"), "the key begins with a brace");
  EXPECT_EQ(reasonFor("a[b", "v"), "the key holds an opening bracket, which begins a command");
}

TEST(Hazard, ADollarSignThatBeginsNoVariableIsNoHazard) { EXPECT_EQ(reasonFor("k", "5 $ a day"), "none"); }

TEST(Hazard, AValueThatAddsACommandIsAHazard) {
  const std::string quote = "the value holds a double quote, which ends it";
  for (const std::string separator : {"\n", "; "}) {
    const std::string context = "\" -context \"kelvo\\\\usage\"";
    EXPECT_EQ(reasonFor("k", "v" + context + separator + "vestra_add_data -client kelvo -key f -value \"w"),
              quote + ", the value holds a backslash, which changes what follows it");
  }
}

TEST(Hazard, SeveralReasonsOfAHazardAreAllNamed) {
  EXPECT_EQ(reasonFor("a b", "[c] $d"),
            "the key holds white space, which ends it, "
            "the value holds an opening bracket, which begins a command, "
            "the value holds a dollar sign, which begins a variable");
}

}  // namespace
}  // namespace vestra::reading
