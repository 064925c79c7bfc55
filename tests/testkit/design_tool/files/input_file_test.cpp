#include "design_tool/files/input_file.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

#include "support/files.h"
#include "support/temporary_directory.h"
#include "testkit/design_tool/scripts.h"

namespace vestra::design_tool {
namespace {

std::string errorAt(const std::string& path) {
  return errorIn(path, [&] { readRegularFile(path); });
}

TEST(InputFile, IsReadWithAllItsBytes) {
  const vestra_test::TemporaryDirectory directory;
  const std::string bytes = std::string(200'000, 'a') + std::string("\0\xFF\r\n\x1A", 5) + "end";
  vestra_test::writeFile(directory / "f", bytes);
  EXPECT_EQ(readRegularFile(directory / "f"), bytes);
}

TEST(InputFile, IsRefusedUnlessItIsRegular) {
  const vestra_test::TemporaryDirectory directory;
  ASSERT_EQ(::mkfifo((directory / "pipe").c_str(), 0600), 0);
  EXPECT_EQ(errorAt(directory / "pipe"), "is not a regular file");
  EXPECT_EQ(errorAt("/dev/zero"), "is not a regular file");
  EXPECT_EQ(errorAt(directory.path()), "is a directory, not a file");
  EXPECT_EQ(errorAt(directory / "none"), "cannot be read: No such file or directory");
}

}  // namespace
}  // namespace vestra::design_tool
