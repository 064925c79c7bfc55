#include "files/path_text.h"

#include <gtest/gtest.h>

namespace Oza {
namespace {

TEST(DirectoryOf, DirectoryKeepsTheFinalSlash) {
  EXPECT_EQ(directoryOf("/home/ann/.Calvix/Common/2018.2/vestra", 6), "/home/ann/.Calvix/Common/2018.2/");
  EXPECT_EQ(directoryOf("/p/vestra/.kelvo_vestrra.info", 19), "/p/vestra/");
}

TEST(DirectoryOf, DirectoryCutsByLengthAndNotByName) { EXPECT_EQ(directoryOf("/a/b/cdef", 6), "/a/"); }

TEST(DirectoryOf, ExactlyLongEnoughPathIsCutToNothing) { EXPECT_EQ(directoryOf("vestra", 6), ""); }

TEST(DirectoryOf, ShorterPathIsUsedWhole) {
  EXPECT_EQ(directoryOf("short", 6), "short");
  EXPECT_EQ(directoryOf("", 6), "");
}

TEST(DirectoryOf, NameWithoutLengthCutsNothing) { EXPECT_EQ(directoryOf("/a/b", 0), "/a/b"); }

}  // namespace
}  // namespace Oza
