#include "files/path_text.h"

#include <cstddef>

#include "support/test.h"

namespace Oza {
namespace {

TEST(DirectoryOf, IsThePathLessTheNamesLength) {
  const struct {
    const char* path;
    std::size_t nameLength;
    const char* directory;
  } rows[] = {
      {"/home/ann/.Calvix/Common/2018.2/vestra", 6, "/home/ann/.Calvix/Common/2018.2/"},
      {"/p/vestra/.kelvo_vestrra.info", 19, "/p/vestra/"},
      // Whatever the name is.
      {"/a/b/cdef", 6, "/a/"},
      {"/a/b", 0, "/a/b"},
      {"vestra", 6, ""},
      // A shorter path is used whole.
      {"short", 6, "short"},
      {"", 6, ""},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(directoryOf(row.path, row.nameLength), row.directory) << row.path;
  }
}

TEST(DirectoryOfFile, EndsWithTheLastSlash) {
  EXPECT_EQ(directoryOfFile("/p/vestra/kelvo_vestra.tcl"), "/p/vestra/");
  EXPECT_EQ(directoryOfFile("/file"), "/");
  EXPECT_EQ(directoryOfFile("file"), "");
}

}  // namespace
}  // namespace Oza
