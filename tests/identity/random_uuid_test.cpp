#include "identity/random_uuid.h"

#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <set>

#include "support/test.h"

namespace Oza {
namespace {

/// Lets the kernel answer this process like one that is older than getrandom.
void takeAwayGetrandom() {
  failSystemCall(SYS_getrandom, ENOSYS);
  if (syscall(SYS_getrandom, nullptr, 0, 0) != -1 || errno != ENOSYS) {
    throw std::runtime_error("getrandom cannot be taken away");
  }
}

TEST(RandomUuid, IsAnotherVersion4IdentifierInCanonicalFormEachTime) {
  const ScopedLocale grouping(digitGroupingLocale());
  std::set<std::string> seen;
  std::set<char> variants;
  for (int i = 0; i < 1000; ++i) {
    const std::string uuid = randomUuid();
    EXPECT_TRUE(isRandomUuid(uuid)) << uuid;
    seen.insert(uuid);
    variants.insert(uuid[19]);
  }
  EXPECT_EQ(seen.size(), 1000U);
  EXPECT_EQ(variants, (std::set<char>{'8', '9', 'a', 'b'}));
}

TEST(RandomUuid, IsDrawnFromTheDeviceWhereTheKernelLacksTheCall) {
  const auto draw = [] {
    takeAwayGetrandom();
    return randomUuid();
  };
  const std::string uuid = inChildProcess(draw);
  EXPECT_TRUE(isRandomUuid(uuid)) << uuid;
  EXPECT_NE(inChildProcess(draw), uuid);
}

TEST(RandomUuid, IsNotMadeUpWithoutASourceOfRandomness) {
  const std::string outcome = inChildProcess([] {
    takeAwayGetrandom();
    // Files to be read. A lack of descriptors would do, but the sanitizers need some.
    failSystemCall(SYS_openat, ENOENT, O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
    return randomUuid();
  });
  EXPECT_EQ(outcome, "exception: getrandom");
}

TEST(RandomUuid, IsNotDrawnFromAnEmptyFileInTheDevicesPlace) {
  if (geteuid() != 0) {
    GTEST_SKIP() << "only root can take another root directory";
  }
  const TemporaryDirectory root;
  writeFile(root / "dev/urandom", "");
  const std::string outcome = inRootDirectory(root.path(), [] {
    const TimeLimit limit;
    takeAwayGetrandom();
    return randomUuid();
  });
  EXPECT_EQ(outcome, "exception: getrandom");
}

}  // namespace
}  // namespace Oza
