#include "reading/tcl_text.h"

#include <gtest/gtest.h>

namespace vestra::reading {
namespace {

TEST(TclText, EveryByteComesBackFromTclText) {
  std::string bytes;
  for (int value = 0; value < 256; ++value) {
    bytes += static_cast<char>(value);
  }
  EXPECT_EQ(toBytes(toTclText(bytes)), bytes);
}

TEST(TclText, NulAndHighBytesTakeTwoBytesOfTclText) {
  EXPECT_EQ(toTclText(std::string("\0\x7F\x80\xFF", 4)), "\xC0\x80\x7F\xC2\x80\xC3\xBF");
}

TEST(TclText, ACharacterAboveTheBytesBecomesItsUtf8) {
  EXPECT_EQ(toBytes("\xE2\x82\xAC\xC4\x80"), "\xE2\x82\xAC\xC4\x80");
}

TEST(TclText, ALeadByteAtTheEndStays) { EXPECT_EQ(toBytes("a\xC3"), "a\xC3"); }

}  // namespace
}  // namespace vestra::reading
