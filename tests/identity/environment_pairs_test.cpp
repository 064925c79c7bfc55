#include "identity/environment_pairs.h"

#include "support/test.h"

namespace Oza {
namespace {

/// The pairs as "SECTION key=value", one to a line.
std::string shown(const std::vector<EnvironmentPair>& pairs) {
  std::string text;
  for (const EnvironmentPair& pair : pairs) {
    text += std::to_string(pair.section) + " " + pair.key + "=" + pair.value + "\n";
  }
  return text;
}

TEST(EnvironmentPairs, AreSixOfTheUsersEnvironmentAndThenProjectFacts) {
  const std::string six = "a#1#b#2#c#3#d#4#e#5#f#6";
  const std::string sixPairs = "1 a=1\n1 b=2\n1 c=3\n1 d=4\n1 e=5\n1 f=6\n";
  const std::string megabyte(1048576, 'x');
  const struct {
    const char* name;
    std::string text;
    std::string pairs;
  } rows[] = {
      {"twelve fields", six, sixPairs},
      {"thirteen", six + "#beta", sixPairs},
      {"fourteen", six + "#beta#yes", sixPairs + "0 beta=yes\n"},
      {"fifteen", six + "#beta#yes#os_platform", sixPairs + "0 beta=yes\n"},
      {"sixteen", six + "#Beta#yes#beta#no", sixPairs + "0 Beta=yes\n0 beta=no\n"},
      {"an empty last value", six + "#beta#", sixPairs + "0 beta=\n"},
      {"empty fields", "#1#b##c#3####5#f#6", "1 =1\n1 b=\n1 c=3\n1 =\n1 =5\n1 f=6\n"},
      {"other bytes", "a b#1=2#\xff#\xc3\xa9#c#\t# #6 ", "1 a b=1=2\n1 \xff=\xc3\xa9\n1 c=\t\n1  =6 \n"},
      {"a megabyte", "a#" + megabyte, "1 a=" + megabyte + "\n"},
      {"nothing", "", ""},
      {"one separator", "#", "1 =\n"},
      {"a key alone", "a", ""},
      {"a last key without a value", "a#1#b", "1 a=1\n"},
      {"two pairs", "a#1#b#2", "1 a=1\n1 b=2\n"},
  };
  for (const auto& row : rows) {
    EXPECT_TRUE(shown(environmentPairs(row.text)) == row.pairs) << row.name;
  }
}

}  // namespace
}  // namespace Oza
