// Limits that a shell or a batch system sets on the host, in force while it uses the
// library.

#include <sys/resource.h>

#include <csignal>
#include <fstream>

#include "reliability/sanitized.h"
#include "reliability/watched_host.h"

namespace vestra_test {
namespace {

/// Limits a process; the hard limit stays, so that it can be lifted.
void limit(pid_t process, __rlimit_resource resource, rlim_t most) {
  rlimit limits{};
  prlimit(process, resource, nullptr, &limits);
  limits.rlim_cur = most;
  prlimit(process, resource, &limits, nullptr);
}

rlim_t addressSpaceOf(pid_t process) {
  std::ifstream in("/proc/" + std::to_string(process) + "/statm");
  rlim_t pages = 0;
  in >> pages;
  return pages * 4096;
}

class LimitedHost : public WatchedHost {
 protected:
  HostEnd runWithin(__rlimit_resource resource, rlim_t most) {
    workplace.reset();
    HostStart start = workplace.start();
    start.atBeginning = [&](pid_t process) { limit(process, resource, most); };
    return runHost(start);
  }

  /// A record that exceeds the limit is not written at all.
  void expectOldOrNewIdentity() {
    const std::string identity = contentOf(workplace.identityFile()).value_or("");
    if (identity != workplace.identityBefore().value_or("")) {
      EXPECT_THAT(identity, MatchesRegex(identityText(ANY_TIME, "0", "[28]", "0", ANY_UUID)));
    }
  }

  void expectNextRunWorks() {
    workplace.makeDue();
    if (isNewState()) {
      expectThatAReportIsSent();
    }
  }
};

TEST_P(LimitedHost, OutlivesAFileBeyondTheSizeLimit) {
  for (rlim_t bytes = 0; bytes < 1200; bytes += bytes < 60 ? 3 : 60) {
    SCOPED_TRACE(std::to_string(bytes) + " bytes for each file");
    const HostEnd end = runWithin(RLIMIT_FSIZE, bytes);
    expectQuietEnd(end, "answer true");
    EXPECT_THAT(contentOf(workplace.settingsFile()).value_or(""), StartsWith(workplace.settingsBefore()));
    expectOldOrNewIdentity();
    expectNextRunWorks();
  }
}

TEST_P(LimitedHost, LosesNothingWithoutDescriptors) {
  if (SANITIZED) {
    GTEST_SKIP() << "a sanitizer's runtime opens pipes of its own";
  }
  for (rlim_t descriptors = 0; descriptors <= 3; ++descriptors) {
    const HostEnd end = runWithin(RLIMIT_NOFILE, descriptors);
    expectQuietEnd(end, "answer false");
    EXPECT_EQ(contentOf(workplace.settingsFile()).value_or(""), workplace.settingsBefore());
    EXPECT_EQ(contentOf(workplace.identityFile()), workplace.identityBefore());
  }
  expectThatAReportIsSent();
  EXPECT_EQ(runWithin(RLIMIT_NOFILE, 4).outcome, "answer true");
}

TEST_P(LimitedHost, ThrowsOrAnswersWithoutMemory) {
  if (SANITIZED) {
    GTEST_SKIP() << "a sanitizer's runtime ends the process when it gets no memory";
  }
  for (rlim_t left = 0; left < 6U << 20U; left += 256U << 10U) {
    SCOPED_TRACE(std::to_string(left) + " bytes of address space left");
    workplace.reset();
    HostStart start = workplace.start();
    start.atBeginning = [&](pid_t process) { limit(process, RLIMIT_AS, addressSpaceOf(process) + left); };
    const HostEnd end = runHost(start);
    expectQuietEnd(end, AnyOf("answer true", "answer false", "exception std::bad_alloc"));
    EXPECT_THAT(contentOf(workplace.settingsFile()).value_or(""), StartsWith(workplace.settingsBefore()));
    expectNextRunWorks();
  }
}

constexpr Situation LIMITED_KNOWN = {Vestra::KELVO, Situation::KNOWN_PROJECT,
                                     Situation::HOME_WITHOUT_IDENTIFIER};
constexpr Situation LIMITED_NEW = {Vestra::TAVLO, Situation::NEW_PROJECT, Situation::NEW_HOME};

INSTANTIATE_TEST_SUITE_P(EachSituation, LimitedHost, Values(LIMITED_KNOWN, LIMITED_NEW), situationName);
}  // namespace
}  // namespace vestra_test
