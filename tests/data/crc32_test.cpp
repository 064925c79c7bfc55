#include "data/crc32.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <string>
#include <vector>

#include "handler/vestra_handler.h"
#include "support/zlib_crc32.h"

namespace Oza {
namespace {

using vestra_test::zlibCrc32;

TEST(Crc32, ChecksumOfTheEmptyTextIsZero) { EXPECT_EQ(crc32(""), 0U); }

TEST(Crc32, ChecksumGivesThePublishedCheckValue) { EXPECT_EQ(crc32("123456789"), 3421780262U); }

TEST(Crc32, ChecksumOfAReportsFirstContextIsKnown) {
  EXPECT_EQ(crc32("tool_flowkelvo_orbeloprojectsoftware_version_and_target_device"), 3600604488U);
}

TEST(Crc32, ChecksumsOfSingleBytesAreKnown) {
  EXPECT_EQ(crc32("a"), 0xE8B7BE43U);
  EXPECT_EQ(crc32("\x01"), 0xA505DF1BU);
  EXPECT_EQ(crc32("\xff"), 0xFF000000U);
}

TEST(Crc32, ChecksumOfEverySingleByteIsThatOfZlib) {
  for (int byte = 1; byte < 256; ++byte) {
    const std::string text(1, static_cast<char>(byte));
    EXPECT_EQ(crc32(text.c_str()), zlibCrc32(text)) << "byte " << byte;
  }
}

TEST(Crc32, ChecksumOfAMegabyteIsThatOfZlib) {
  std::string text;
  for (std::size_t i = 0; i < 1048576; ++i) {
    text += static_cast<char>(1 + i * 7919 % 255);
  }
  EXPECT_EQ(crc32(text.c_str()), zlibCrc32(text));
}

TEST(Crc32, ChecksumOfTheHandlerEndsAtTheFirstNul) {
  VestraHandler handler;
  EXPECT_EQ(handler.getCrc32(std::string("123456789\0abc", 13)), 3421780262U);
  EXPECT_EQ(handler.getCrc32(std::string("\0abc", 4)), 0U);
}

TEST(Crc32, ChecksumOfTheHandlerIsThatOfTheText) {
  VestraHandler handler;
  EXPECT_EQ(handler.getCrc32(""), 0U);
  EXPECT_EQ(handler.getCrc32("123456789"), 3421780262U);
}

RC_GTEST_PROP(Crc32, OfAnyPiecesEndsAtTheFirstNul, (const std::vector<std::string>& pieces)) {
  Crc32 checksum;
  std::string text;
  for (const std::string& piece : pieces) {
    checksum.append(piece);
    text += piece;
  }
  RC_ASSERT(checksum.value() == zlibCrc32(text.substr(0, text.find('\0'))));
}

TEST(Crc32, EndsAtTheFirstNulWhereverThatStands) {
  const std::string text = "0123456789abcdefghijklmnopqrstuvwxyz";
  for (std::size_t nul = 0; nul < text.size(); ++nul) {
    for (std::size_t pieceEnd = 0; pieceEnd <= text.size(); ++pieceEnd) {
      std::string cut = text;
      cut[nul] = '\0';
      Crc32 checksum;
      checksum.append(cut.substr(0, pieceEnd));
      checksum.append(cut.substr(pieceEnd));
      EXPECT_EQ(checksum.value(), zlibCrc32(text.substr(0, nul))) << nul << " " << pieceEnd;
    }
  }
}

}  // namespace
}  // namespace Oza
