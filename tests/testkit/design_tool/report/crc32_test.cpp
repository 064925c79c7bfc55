#include "design_tool/report/crc32.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

namespace vestra::design_tool {
namespace {

TEST(Crc32, TheChecksumOfAReportIsThePublishedOne) {
  EXPECT_EQ(Crc32().checksum(), 0u);
  EXPECT_EQ(Crc32().after("123456789").checksum(), 0xCBF43926u);
}

RC_GTEST_PROP(Crc32, TheStateBeforeAnyBytesIsFound, (const std::string& first, const std::string& second)) {
  const std::uint32_t checksum = Crc32().after(first + second).checksum();
  RC_ASSERT(Crc32::endingIn(checksum).before(second) == Crc32().after(first));
}

}  // namespace
}  // namespace vestra::design_tool
