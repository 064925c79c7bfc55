// Files that cannot be opened or read at this moment: another process holds a lease, or the
// system is out of something. What they hold must be the same afterwards.

#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include <boost/filesystem/operations.hpp>

#include "identity/project_fixture.h"
#include "identity/settings_fixture.h"
#include "support/file_holders.h"

namespace Oza {
namespace {

const std::string RECORD = identityText("1699999999", "0", "7", "0", "id");
const std::string COUNTED_RECORD = identityText("1699999999", "0", "8", "0", "id");
constexpr int PASSING_ERRORS[] = {EAGAIN, ENFILE, EMFILE, ESTALE, EIO, ENOMEM, EINVAL};
// EACCES counts as passing where the file can be opened for reading.
constexpr int ERRORS_OF_A_READABLE_FILE[] = {EAGAIN, ENFILE, EMFILE, ESTALE, EIO, ENOMEM, EINVAL, EACCES};

std::string word(bool answer) { return answer ? "true" : "false"; }

/// Refuses from now on to open files with these flags.
void failOpening(int flags, int error) {
  failSystemCall(SYS_openat, error, static_cast<std::uint32_t>(flags | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
}

class UnusableIdentity : public ProjectFixture {
 protected:
  UnusableIdentity() { writeIdentity(RECORD); }

  VestraProjectInfo record{file(), &handler};
};

TEST_F(UnusableIdentity, IsLeftAloneWhenItCannotBeOpened) {
  for (const int error : ERRORS_OF_A_READABLE_FILE) {
    EXPECT_EQ(inChildProcess([&] {
                failOpening(O_RDWR, error);
                return word(record.loadOrCreate());
              }),
              "false");
    EXPECT_EQ(identity(), RECORD) << strerrorname_np(error);
  }
}

TEST_F(UnusableIdentity, IsNotCountedInWhenItCannotBeOpenedAgain) {
  record.loadOrCreate();
  for (const int error : ERRORS_OF_A_READABLE_FILE) {
    EXPECT_EQ(inChildProcess([&] {
                failOpening(O_RDWR | O_CREAT, error);
                return word(record.recordSendAttempt());
              }),
              "false");
    EXPECT_EQ(identity(), RECORD) << strerrorname_np(error);
  }
}

TEST_F(UnusableIdentity, IsNotCountedInWhenItCannotBeReadAgain) {
  record.loadOrCreate();
  inChildProcess([&] {
    failSystemCall(SYS_pread64, EIO);
    return word(record.recordSendAttempt());
  });
  EXPECT_EQ(identity(), RECORD);
}

TEST_F(UnusableIdentity, IsUsedWhenALeaseIsGivenBack) {
  {
    const LeaseHolder server(file(), LeaseHolder::YIELDS);
    EXPECT_TRUE(record.loadOrCreate());
    EXPECT_EQ(record.getIteration(), 7U);
  }
  const LeaseHolder server(file(), LeaseHolder::YIELDS);
  record.recordSendAttempt();
  EXPECT_EQ(identity(), COUNTED_RECORD);
}

TEST_F(UnusableIdentity, IsLeftAloneWhenALeaseIsKept) {
  {
    const LeaseHolder server(file(), LeaseHolder::KEEPS);
    EXPECT_FALSE(record.loadOrCreate());
  }
  VestraProjectInfo loaded(file(), &handler);
  EXPECT_TRUE(loaded.loadOrCreate());
  {
    const LeaseHolder server(file(), LeaseHolder::KEEPS);
    EXPECT_FALSE(loaded.recordSendAttempt());
  }
  EXPECT_EQ(identity(), RECORD);
}

TEST_F(UnusableIdentity, IsUsedByAHostWhoseStandardInputIsClosed) {
  EXPECT_EQ(inChildProcess([&] {
              close(STDIN_FILENO);
              return word(record.loadOrCreate() && !record.recordSendAttempt());
            }),
            "true");
  EXPECT_EQ(identity(), COUNTED_RECORD);
}

class UnusableSettings : public SettingsFixture {
 protected:
  UnusableSettings() { writeSettings("RandomID=abc\n"); }
};

TEST_F(UnusableSettings, AreReadLaterWhenTheyCannotBeReadAtFirst) {
  for (const int error : PASSING_ERRORS) {
    EXPECT_EQ(inChildProcess([&] {
                failOpening(O_RDONLY, error);
                return VestraSetting().getRandomId();
              }),
              "abc")
        << strerrorname_np(error);
  }
  EXPECT_EQ(settings(), "RandomID=abc\n");
}

TEST_F(UnusableSettings, AreReadWhenALeaseIsGivenBack) {
  const LeaseHolder server(file(), LeaseHolder::YIELDS);
  EXPECT_EQ(VestraSetting().getPropertyValue("RandomID"), "abc");
}

TEST_F(UnusableSettings, AreLeftAloneWhenALeaseIsKept) {
  {
    const LeaseHolder server(file(), LeaseHolder::KEEPS);
    EXPECT_EQ(VestraSetting().getRandomId(), "");
  }
  EXPECT_EQ(settings(), "RandomID=abc\n");
}

TEST_F(UnusableSettings, AreReadByAHostWhoseStandardInputIsClosed) {
  EXPECT_EQ(inChildProcess([&] {
              close(STDIN_FILENO);
              return VestraSetting().getRandomId();
            }),
            "abc");
}

/// Larger than any memory: the rest is a hole.
constexpr std::uintmax_t TERABYTE = 1ULL << 40U;

TEST_F(UnusableSettings, AreReadToTheEndOfTheFirstMegabyte) {
  boost::filesystem::resize_file(file(), TERABYTE);
  EXPECT_EQ(VestraSetting().getRandomId(), "abc");
}

TEST_F(UnusableIdentity, IsReadToTheEndOfTheFirstMegabyte) {
  boost::filesystem::resize_file(file(), TERABYTE);
  ASSERT_TRUE(record.loadOrCreate());
  record.recordSendAttempt();
  EXPECT_EQ(identity(), COUNTED_RECORD);
}

}  // namespace
}  // namespace Oza
