#include "identity/random_uuid.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <set>
#include <stdexcept>
#include <string>

#include "support/child_process.h"
#include "support/failing_system_call.h"
#include "support/files.h"
#include "support/scoped_locale.h"
#include "support/temporary_directory.h"
#include "support/time_limit.h"
#include "support/uuid_form.h"

namespace Oza {
namespace {

using vestra_test::failSystemCall;
using vestra_test::isRandomUuid;

/// Lets the kernel answer this process like one that is older than getrandom.
void takeAwayGetrandom() {
  failSystemCall(SYS_getrandom, ENOSYS);
  if (syscall(SYS_getrandom, nullptr, 0, 0) != -1 || errno != ENOSYS) {
    throw std::runtime_error("getrandom cannot be taken away");
  }
}

TEST(RandomUuid, RandomUuidIsAVersion4IdentifierInCanonicalForm) {
  for (int i = 0; i < 1000; ++i) {
    const std::string uuid = randomUuid();
    EXPECT_TRUE(isRandomUuid(uuid)) << uuid;
  }
}

TEST(RandomUuid, RandomUuidIsAnotherOneEachTime) {
  std::set<std::string> seen;
  for (int i = 0; i < 1000; ++i) {
    seen.insert(randomUuid());
  }
  EXPECT_EQ(seen.size(), 1000U);
}

TEST(RandomUuid, RandomUuidUsesEveryVariantDigit) {
  std::set<char> seen;
  for (int i = 0; i < 1000; ++i) {
    seen.insert(randomUuid()[19]);
  }
  EXPECT_EQ(seen, (std::set<char>{'8', '9', 'a', 'b'}));
}

TEST(RandomUuid, RandomUuidIsDrawnFromTheDeviceWhereTheKernelLacksTheCall) {
  const auto draw = [] {
    takeAwayGetrandom();
    return randomUuid();
  };
  const std::string uuid = vestra_test::inChildProcess(draw);
  EXPECT_TRUE(isRandomUuid(uuid)) << uuid;
  EXPECT_NE(vestra_test::inChildProcess(draw), uuid);
}

TEST(RandomUuid, RandomUuidIsNotMadeUpWithoutASourceOfRandomness) {
  const std::string outcome = vestra_test::inChildProcess([] {
    takeAwayGetrandom();
    // Files to be read. A lack of descriptors would do, but the sanitizers need some.
    failSystemCall(SYS_openat, ENOENT, O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
    return randomUuid();
  });
  EXPECT_EQ(outcome, "exception: getrandom");
}

TEST(RandomUuid, RandomUuidIsNotDrawnFromAnEmptyFileInTheDevicesPlace) {
  if (geteuid() != 0) {
    GTEST_SKIP() << "only root can take another root directory";
  }
  const vestra_test::TemporaryDirectory root;
  vestra_test::writeFile(root / "dev/urandom", "");
  const std::string outcome = vestra_test::inRootDirectory(root.path(), [] {
    const vestra_test::TimeLimit limit;
    takeAwayGetrandom();
    return randomUuid();
  });
  EXPECT_EQ(outcome, "exception: getrandom");
}

TEST(RandomUuid, RandomUuidDoesNotMindTheHostsLocale) {
  const vestra_test::ScopedLocale grouping(vestra_test::digitGroupingLocale());
  const std::string uuid = randomUuid();
  EXPECT_TRUE(isRandomUuid(uuid)) << uuid;
}

}  // namespace
}  // namespace Oza
