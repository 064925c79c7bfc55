// Each system call of a report fails once, with each error that can be expected of it, and
// each opening of the records twice.

#include <sys/syscall.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <map>
#include <sstream>

#include "reliability/sanitized.h"
#include "reliability/system_calls.h"
#include "reliability/watched_host.h"

namespace vestra_test {
namespace {

constexpr const char* FILE_ERROR = "exception boost::filesystem::filesystem_error";
constexpr const char* NO_RANDOMNESS = "exception boost::wrapexcept<boost::uuids::entropy_error>";

bool holds(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

class FailingCall : public WatchedHost {
 protected:
  void fail(Disturbance::Kind kind, std::size_t number, int error) {
    workplace.reset();
    const HostEnd end = runHost(workplace.start(), {kind, number, error});
    ASSERT_TRUE(end.disturbed);
    const SystemCall& call = end.calls[number];
    std::ostringstream what;
    what << "call " << number << ", " << call << ", fails "
         << (kind == Disturbance::FAIL_TWICE ? "twice " : "") << "with " << strerrorname_np(error);
    SCOPED_TRACE(what.str());
    expectQuietEnd(end, outcomeAfterFailureOf(call));
    expectNothingLost();
    workplace.makeDue();
    if (isNewState()) {
      expectThatAReportIsSent();
    }
  }

  // A report is not given up but for the identity file, the support library and what
  // the loader needs; and no file stops it but one that must go.
  Matcher<std::string> outcomeAfterFailureOf(const SystemCall& call) {
    if (managesMemory(call.number)) {
      return AnyOf("answer true", "answer false", "exception std::bad_alloc");
    }
    if (call.number == SYS_getrandom) {
      return AnyOf("answer true", "answer false", NO_RANDOMNESS);
    }
    if (call.number == SYS_getcwd) {
      return FILE_ERROR;
    }
    if (leadsToIdentity(call.subject) || holds(call.subject, "libqvzcommonvestrasupport.so")) {
      return AnyOf("answer true", "answer false");
    }
    if (isReportFile(call.subject) && (removes(call.number) || asksForStatus(call.number))) {
      return AnyOf("answer true", FILE_ERROR);
    }
    return "answer true";
  }

  // The file, or a directory above it, which some Boosts look at before they make the next.
  bool leadsToIdentity(const std::string& path) const {
    return !path.empty() && (workplace.identityFile() + "/").rfind(path + "/", 0) == 0;
  }

  bool isReportFile(const std::string& path) const {
    return path == workplace.scriptFile() || path == workplace.rulesFile() ||
           path == workplace.inVestraDirectory("tavlo_vestra.log");
  }

  void expectNothingLost() {
    EXPECT_THAT(contentOf(workplace.settingsFile()).value_or(""),
                AnyOf(workplace.settingsBefore(), AllOf(StartsWith(workplace.settingsBefore()),
                                                        MatchesRegex("(.|\n)*RandomID=[0-9a-f-]{36}\n"))));
    if (GetParam().project == Situation::KNOWN_PROJECT) {
      EXPECT_THAT(contentOf(workplace.identityFile()).value_or("no file"),
                  MatchesRegex(identityText("[0-9]+", "0", "[78]", "0", KNOWN_PROJECT_ID)));
    }
  }

  // Each call fails with one of its errors. VESTRA_SWEEP=full tries all.
  static bool triesAllErrors() { return std::getenv("VESTRA_SWEEP") != nullptr; }

  // A sanitizer's runtime ends the process when its own memory and pipes fail it.
  std::vector<int> errorsToTry(const SystemCall& call, std::size_t number) const {
    const std::vector<int>& errors = errorsOf(call.number);
    if (SANITIZED && (managesMemory(call.number) || call.subject.rfind("pipe:", 0) == 0)) {
      return {};
    }
    if (triesAllErrors() || errors.empty()) {
      return errors;
    }
    return {errors[number % errors.size()]};
  }
};

TEST_P(FailingCall, LeavesAnAnswerTheFilesAndTheNextRunInOrder) {
  const std::vector<SystemCall> calls = callsOfARun();
  std::map<std::string, int> triedOf;
  int tried = 0;
  for (std::size_t number = 0; number < calls.size(); ++number) {
    EXPECT_TRUE(SANITIZED || isKnown(calls[number].number)) << calls[number] << ": which errors can it give?";
    for (const int error : errorsToTry(calls[number], number)) {
      fail(Disturbance::FAIL, number, error);
      ++tried;
      ++triedOf[nameOf(calls[number].number)];
    }
  }
  std::cout << GetParam() << ": " << calls.size() << " system calls, " << tried << " failures tried (";
  for (const auto& [name, count] : triedOf) {
    std::cout << ' ' << name << ' ' << count;
  }
  std::cout << " ), which left " << stateCount() << " states of the files\n";
  EXPECT_GT(tried, triesAllErrors() ? 300 : 50);
}

TEST_P(FailingCall, OfTwoOpeningsOfARecordLeavesItAsItWas) {
  const std::vector<SystemCall> calls = callsOfARun();
  int openings = 0;
  for (std::size_t number = 0; number < calls.size(); ++number) {
    const bool isRecord = calls[number].subject == workplace.identityFile() ||
                          calls[number].subject == workplace.settingsFile();
    if (calls[number].number == SYS_openat && isRecord) {
      ++openings;
      for (const int error : errorsOf(SYS_openat)) {
        fail(Disturbance::FAIL_TWICE, number, error);
      }
    }
  }
  EXPECT_GE(openings, 3);
}

INSTANTIATE_TEST_SUITE_P(EachSituation, FailingCall, ValuesIn(allSituations()), situationName);

class CorruptIdentityOfAHost : public WatchedHost {
 protected:
  HostEnd runOnCorruption(const Disturbance& disturbance) {
    workplace.reset();
    writeFile(workplace.identityFile(), "no number\n");
    return runHost(workplace.start(), disturbance);
  }
};

// Read again, since another host may be writing it. What stays damaged is deleted.
TEST_P(CorruptIdentityOfAHost, StaysWhereItCannotBeReadAgain) {
  const std::vector<SystemCall> calls = runOnCorruption({Disturbance::WATCH}).calls;
  EXPECT_FALSE(contentOf(workplace.identityFile()));
  int reads = 0;
  for (std::size_t number = 0; number < calls.size(); ++number) {
    if (calls[number].number == SYS_pread64 && calls[number].subject == workplace.identityFile()) {
      SCOPED_TRACE(number);
      EXPECT_EQ(runOnCorruption({Disturbance::FAIL, number, EIO}).outcome, "answer false");
      EXPECT_EQ(contentOf(workplace.identityFile()), "no number\n");
      ++reads;
    }
  }
  EXPECT_EQ(reads, 2);
}

INSTANTIATE_TEST_SUITE_P(KnownProject, CorruptIdentityOfAHost, Values(KNOWN_SIMULATOR), situationName);

}  // namespace
}  // namespace vestra_test
