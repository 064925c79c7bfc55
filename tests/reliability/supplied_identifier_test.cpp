// A host that supplies the project's identifier is killed at each system call of its first
// report. The identifier survives; the mark that the host supplied it does not always.

#include <iostream>

#include "reliability/sanitized.h"
#include "reliability/watched_host.h"

namespace vestra_test {
namespace {

using testing::MatchesRegex;

class SuppliedIdentifier : public WatchedHost {
 protected:
  HostStart startWithIdentifier() const {
    HostStart start = workplace.start();
    start.projectId = "the-hosts";
    return start;
  }

  std::string identity() const { return contentOf(workplace.identityFile()).value_or("missing"); }
};

TEST_P(SuppliedIdentifier, OnlyAnEmptyFileLosesTheMarkOfTheHostsIdentifier) {
  workplace.reset();
  const std::size_t calls = runHost(startWithIdentifier(), {Disturbance::WATCH}).calls.size();
  int lost = 0;
  for (std::size_t number = 0; number < calls; number += SANITIZED ? 5 : 1) {
    SCOPED_TRACE("killed at call " + std::to_string(number));
    workplace.reset();
    runHost(startWithIdentifier(), {Disturbance::KILL, number});
    const bool isEmpty = identity().empty();
    runHost(startWithIdentifier());
    EXPECT_THAT(identity(),
                MatchesRegex(std::string("[0-9]{10}\n0\n[23]\n") + (isEmpty ? "0" : "1") + "\nthe-hosts\n"));
    lost += isEmpty ? 1 : 0;
  }
  std::cout << GetParam() << ": the mark is lost at " << lost << " of " << calls << " system calls\n";
  EXPECT_GT(calls, 50U);
}

INSTANTIATE_TEST_SUITE_P(
    NewProjects, SuppliedIdentifier,
    testing::Values(Situation{Oza::Vestra::KELVO, Situation::NEW_PROJECT, Situation::NEW_HOME},
                    Situation{Oza::Vestra::TAVLO, Situation::NEW_PROJECT, Situation::KNOWN_HOME}),
    situationName);

}  // namespace
}  // namespace vestra_test
