#include "files/descriptor.h"

#include <fcntl.h>

#include <cerrno>
#include <cstddef>
#include <fstream>

#include "support/interposed/file_calls.h"
#include "support/test.h"

namespace Oza {
namespace {

class OpenFile : public Test {
 protected:
  TemporaryDirectory directory;
  std::string path = directory / "file";
  TimeLimit limit;
};

TEST_F(OpenFile, IsReadToItsPresentEndOrTheMostThatIsAskedFor) {
  const struct {
    const char* atOpening;
    const char* appended;
    std::size_t most;
    const char* text;
  } rows[] = {
      {"", "", 100, ""},
      {"text", "", 100, "text"},
      {"text", "", 5, "text"},
      {"text", "", 4, "text"},
      {"text", "", 3, "tex"},
      // Another host writes after this one has opened the file.
      {"", "text", 100, "text"},
      {"text", ", and three times as much again", 100, "text, and three times as much again"},
      {"text", ", and three times as much again", 6, "text, "},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.text);
    writeFile(path, row.atOpening);
    const Descriptor file(path, O_RDONLY);
    std::ofstream(path, std::ios::app) << row.appended;
    EXPECT_EQ(file.read(row.most), row.text);
  }
}

TEST_F(OpenFile, HasNoTextWhenItIsADevice) {
  EXPECT_EQ(Descriptor("/dev/null", O_RDONLY).read(), std::nullopt);
}

TEST_F(OpenFile, IsWrittenAtItsBeginning) {
  for (const std::string text : {"", "x", "xy"}) {
    writeFile(path, "old");
    EXPECT_EQ(Descriptor(path, O_WRONLY).write(text), text.size());
    EXPECT_EQ(readFile(path), text + std::string("old").substr(text.size()));
  }
}

TEST_F(OpenFile, IsOpenedAgainAfterEachSignal) {
  writeFile(path, "text");
  interruptOpen(3);
  EXPECT_EQ(Descriptor(path, O_RDONLY).read(), "text");
}

TEST_F(OpenFile, IsReadOnceWhateverErrorCameBefore) {
  writeFile(path, "text");
  const Descriptor file(path, O_RDONLY);
  errno = EINTR;
  EXPECT_EQ(file.read(), "text");
  writeFile(path, "");
  errno = EINTR;
  EXPECT_EQ(file.read(), "");
}

}  // namespace
}  // namespace Oza
