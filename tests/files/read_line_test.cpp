#include "files/read_line.h"

#include <gtest/gtest.h>

#include <new>
#include <sstream>
#include <streambuf>
#include <string>

namespace Oza {
namespace {

using namespace std::string_literals;

TEST(ReadLine, ReadsLineByLine) {
  std::istringstream in("one\n\ntwo");
  std::string line;
  EXPECT_TRUE(readLine(in, line));
  EXPECT_EQ(line, "one");
  EXPECT_TRUE(readLine(in, line));
  EXPECT_EQ(line, "");
  EXPECT_TRUE(readLine(in, line));
  EXPECT_EQ(line, "two");
  EXPECT_FALSE(readLine(in, line));
  EXPECT_FALSE(readLine(in, line));
}

TEST(ReadLine, ReadsToTheGivenEnd) {
  std::istringstream in("one\ntwo\0three"s);
  std::string line;
  EXPECT_TRUE(readLine(in, line, '\0'));
  EXPECT_EQ(line, "one\ntwo");
}

TEST(ReadLine, ReadsNothingFromAnEmptyText) {
  std::istringstream in("");
  std::string line;
  EXPECT_FALSE(readLine(in, line));
  EXPECT_FALSE(in.bad());
}

/// Two letters, then an error.
template <typename Error>
class FailingSource : public std::streambuf {
 protected:
  int_type underflow() override {
    if (read) {
      throw Error();
    }
    read = true;
    setg(letters, letters, letters + 2);
    return traits_type::to_int_type(*gptr());
  }

 private:
  char letters[2] = {'a', 'b'};
  bool read = false;
};

struct ReadError : std::ios_base::failure {
  ReadError() : failure("error reading the file") {}
};

TEST(ReadLine, TakesAReadErrorForTheEndAndLeavesTheStreamBad) {
  FailingSource<ReadError> source;
  std::istream in(&source);
  std::string line;
  EXPECT_FALSE(readLine(in, line));
  EXPECT_TRUE(in.bad());
  EXPECT_FALSE(readLine(in, line));
}

TEST(ReadLine, ThrowsWhenItRunsOutOfMemory) {
  FailingSource<std::bad_alloc> source;
  std::istream in(&source);
  std::string line;
  EXPECT_THROW(readLine(in, line), std::bad_alloc);
}

}  // namespace
}  // namespace Oza
