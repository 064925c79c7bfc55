#include "identity/random_uuid.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <set>
#include <stdexcept>
#include <string>

#include "support/child_process.h"
#include "support/scoped_locale.h"
#include "support/uuid_form.h"

namespace Oza {
namespace {

using vestra_test::isRandomUuid;

constexpr std::uint32_t NO_CALL = 0xFFFFFFFF;

/// Lets the kernel answer this process like one that is older than getrandom, and without
/// a file to be read on request. Not by a lack of descriptors, which the sanitizers need.
void takeAwayGetrandom(bool andFiles = false) {
  std::array<sock_filter, 8> lines = {{
      BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
      BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_getrandom, 0, 1),
      BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | ENOSYS),
      BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, andFiles ? SYS_openat : NO_CALL, 0, 3),
      BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, args[2])),
      BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, O_RDONLY | O_CLOEXEC, 0, 1),
      BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | ENOENT),
      BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
  }};
  const sock_fprog filter = {lines.size(), lines.data()};
  if (prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0 ||
      prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &filter) != 0 ||
      syscall(SYS_getrandom, nullptr, 0, 0) != -1 || errno != ENOSYS) {
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
    takeAwayGetrandom(true);
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
