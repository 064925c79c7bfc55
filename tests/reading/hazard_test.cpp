#include "reading/hazard.h"

#include <gtest/gtest.h>

namespace vestra::reading {
namespace {

TEST(Hazard, HasAReasonInWords) {
  std::string harmlessBytes;
  for (int byte = 0; byte < 256; ++byte) {
    if (std::string("\"\\$[").find(static_cast<char>(byte)) == std::string::npos) {
      harmlessBytes += static_cast<char>(byte);
    }
  }
  struct Row {
    std::string key;
    std::string value;
    const char* reason;
  };
  const Row rows[] = {
      {"runs", "2 words; {braces} ] and\na line feed", "none"},
      {"a.b-c", "", "none"},
      {"k", harmlessBytes, "none"},
      {"k", "5 $ a day", "none"},
      {"", "v", "the key is empty"},
      {"two words", "v", "the key holds white space, which ends it"},
      {"two\nlines", "v", "the key holds white space, which ends it"},
      {"a;b", "v", "the key holds a semicolon, which ends the command"},
      {"\"quoted\"", "v", "the key begins with a double quote"},
      {"{braced}", "v", "the key begins with a brace"},
      {"k[0]", "v", "the key holds an opening bracket, which begins a command"},
      {"k$x", "v", "the key holds a dollar sign, which begins a variable"},
      {"k\\n", "v", "the key holds a backslash, which changes what follows it"},
      {"k", "say \"x\"", "the value holds a double quote, which ends it"},
      {"k", "[exit]", "the value holds an opening bracket, which begins a command"},
      {"k", "$HOME", "the value holds a dollar sign, which begins a variable"},
      {"k", "C:\\temp", "the value holds a backslash, which changes what follows it"},
      {"k", "v\" -context \"c\"; vestra_add_data -client kelvo -key f -value \"w",
       "the value holds a double quote, which ends it"},
      {"a b", "[c] $d",
       "the key holds white space, which ends it, "
       "the value holds an opening bracket, which begins a command, "
       "the value holds a dollar sign, which begins a variable"},
  };
  for (const auto& [key, value, reason] : rows) {
    EXPECT_EQ(hazardOf({"kelvo", "kelvo\\usage", key, value, 0}).value_or("none"), reason)
        << key << " = " << value;
  }
}

}  // namespace
}  // namespace vestra::reading
