#ifndef VESTRA_TESTS_RELIABILITY_WATCHED_HOST_H
#define VESTRA_TESTS_RELIABILITY_WATCHED_HOST_H

#include <set>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "reliability/traced_host.h"
#include "reliability/workplace.h"
#include "support/files.h"
#include "support/identity_text.h"

namespace vestra_test {

using namespace testing;
using Oza::Vestra;

/// A host whose system calls are disturbed one after the other, in one situation.
class WatchedHost : public TestWithParam<Situation> {
 protected:
  void SetUp() override;

  /// The system calls of a run that nothing disturbs.
  std::vector<SystemCall> callsOfARun();

  /// Whether no host has started from the present state of the files yet. Hosts know the
  /// past by its files alone, so each state needs to be tried only once.
  bool isNewState() { return seenStates.insert(workplace.state()).second; }
  std::size_t stateCount() const { return seenStates.size(); }

  /// Expects that a host was not ended, lost no descriptor and printed nothing.
  static void expectQuietEnd(const HostEnd& end, const Matcher<std::string>& outcome);

  /// Makes a report due and expects a host to send it, whole.
  void expectThatAReportIsSent();

  Workplace workplace{GetParam()};

 private:
  std::set<std::string> seenStates;
};

inline constexpr Situation NEW_SIMULATOR{Vestra::KELVO, Situation::NEW_PROJECT, Situation::NEW_HOME};
inline constexpr Situation KNOWN_SIMULATOR{Vestra::KELVO, Situation::KNOWN_PROJECT, Situation::KNOWN_HOME};
inline constexpr Situation NEW_LAB_TOOL{Vestra::TAVLO, Situation::NEW_PROJECT, Situation::NEW_HOME};
inline constexpr Situation KNOWN_LAB_TOOL{Vestra::TAVLO, Situation::KNOWN_PROJECT, Situation::KNOWN_HOME};
/// Both products, each with a new and a known project and home.
std::vector<Situation> allSituations();

/// For the names of tests: "SimulatorNewProjectNewHome".
std::string situationName(const TestParamInfo<Situation>& info);

}  // namespace vestra_test

#endif
