#include "data/crc32.h"

#include <rapidcheck/gtest.h>

#include "handler/vestra_handler.h"
#include "support/report_check.h"
#include "support/test.h"

namespace Oza {
namespace {

TEST(Crc32, IsThePublishedOne) {
  VestraHandler handler;
  const std::pair<std::string, std::uint32_t> rows[] = {
      {"", 0U},
      {"123456789", 3421780262U},
      {"123456789\0abc"s, 3421780262U},
      {"\0abc"s, 0U},
      {"tool_flowkelvo_orbeloprojectsoftware_version_and_target_device", 3600604488U}};
  for (const auto& [text, checksum] : rows) {
    EXPECT_EQ(crc32(text.c_str()), checksum) << text;
    EXPECT_EQ(handler.getCrc32(text), checksum) << text;
  }
}

TEST(Crc32, OfAMegabyteIsThatOfZlib) {
  std::string text;
  for (std::size_t i = 0; i < 1048576; ++i) {
    text += static_cast<char>(1 + i * 7919 % 255);
  }
  EXPECT_EQ(crc32(text.c_str()), zlibCrc32(text));
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
