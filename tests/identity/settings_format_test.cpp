#include <rapidcheck/gtest.h>

#include <map>

#include "identity/vestra_setting.h"
#include "support/test.h"

namespace Oza {
namespace {

using Properties = std::map<std::string, std::string>;

Properties propertiesIn(const std::string& text) {
  Properties properties;
  readSettings(text, properties);
  return properties;
}

struct SettingsText {
  const char* what;
  std::string text;
  Properties properties;
};

TEST(SettingsFormat, IsReadLineByLine) {
  const std::string megabyte(1048576, 'x');
  const SettingsText rows[] = {
      {"a key and a value", "RandomID=abc\n", {{"RandomID", "abc"}}},
      {"no end of the last line", "a=1\nb=2", {{"a", "1"}, {"b", "2"}}},
      {"a key twice", "k=1\nk=2\n", {{"k", "1"}}},
      {"a key twice, first without a value", "k=\nk=2\n", {{"k", ""}}},
      {"keys that differ by letter case", "k=1\nK=2\n", {{"K", "2"}, {"k", "1"}}},
      {"blanks around a line", "  RandomID=abc \r\n", {{"RandomID", "abc"}}},
      {"all white space around a line", "\t\v\f RandomID=abc\t\v\f \r\n", {{"RandomID", "abc"}}},
      {"blanks around the equals sign", "RandomID = abc\n", {{"RandomID ", " abc"}}},
      {"blanks within", "a b=c d\n", {{"a b", "c d"}}},
      {"an empty value", "k=\n", {{"k", ""}}},
      {"an empty key", "=v\n", {{"", "v"}}},
      {"both empty", "=\n", {{"", ""}}},
      {"no comments", "#k=v\n;l=w\n", {{"#k", "v"}, {";l", "w"}}},
      {"two equals signs", "k=a=b\nk==b\nk=a=\n==\n", {}},
      {"no equals sign", "kb\n", {}},
      {"lines around dropped ones", "a=1\nk=a=b\nkb\nb=2\n", {{"a", "1"}, {"b", "2"}}},
      {"nothing", "", {}},
      {"empty lines", "\n\n", {}},
      {"blank lines", "  \n\t\n\r\n \v\f\n", {}},
      {"DOS line ends", "a=1\r\nb=2\r\n", {{"a", "1"}, {"b", "2"}}},
      {"a lone carriage return", "a=1\rb\n", {{"a", "1\rb"}}},
      {"old Mac line ends", "a=1\rb=2\r", {}},
      {"NUL bytes within", "k\0y=v\0w\n"s, {{"k\0y"s, "v\0w"s}}},
      {"NUL bytes at the ends", "\0k=v\0\n"s, {{"\0k"s, "v\0"s}}},
      {"bytes above 127", "\xff\x80=\xc3\xa9\x85\xa0\n", {{"\xff\x80", "\xc3\xa9\x85\xa0"}}},
      {"a byte-order mark", "\xef\xbb\xbfRandomID=abc\n", {{"\xef\xbb\xbfRandomID", "abc"}}},
      {"a value of a megabyte", "k=" + megabyte + "\nl=1\n", {{"k", megabyte}, {"l", "1"}}},
      {"a line of a megabyte", megabyte + "\nl=1\n", {{"l", "1"}}},
      {"a megabyte of equals signs", std::string(1048576, '=') + "\nl=1\n", {{"l", "1"}}},
  };
  for (const SettingsText& row : rows) {
    EXPECT_TRUE(propertiesIn(row.text) == row.properties) << row.what;
  }
}

TEST(SettingsFormat, HasTheWhiteSpaceOfTheGlobalLocale) {
  const ScopedLocale odd(oddLettersLocale());
  EXPECT_EQ(propertiesIn("_RandomID=abc__\n"), (Properties{{"RandomID", "abc"}}));
  EXPECT_EQ(propertiesIn(" k=v \n"), (Properties{{" k", "v "}}));
}

RC_GTEST_PROP(SettingsFormat, OfAnyTextHasKeysAndValuesWithoutLineEndsAndEqualsSigns,
              (const std::string& text)) {
  for (const auto& [key, value] : propertiesIn(text)) {
    RC_ASSERT(key.find_first_of("=\n") == std::string::npos);
    RC_ASSERT(value.find_first_of("=\n") == std::string::npos);
    RC_ASSERT(text.find(key + "=" + value) != std::string::npos);
  }
}

}  // namespace
}  // namespace Oza
