#ifndef VESTRA_TESTS_SUPPORT_FARMS_FARM_H
#define VESTRA_TESTS_SUPPORT_FARMS_FARM_H

#include <chrono>
#include <string>
#include <vector>

#include <vestra/vestra.h>

namespace vestra_test {

/// What the project of a farm has behind it.
enum class Age {
  /// It reported an hour ago: no report is due.
  NOT_DUE,
  /// It reported long ago: one report is due.
  DUE,
  /// It never reported, and has no identity.
  NEW_PROJECT,
  /// The same, and the user has no identifier either.
  NEW_HOME
};

/// Many hosts, released together.
struct Farm {
  int hosts = 50;
  Age age = Age::NOT_DUE;
  /// Each host takes the next of these, in turn.
  std::vector<Oza::Vestra::ProductType> products{Oza::Vestra::KELVO};
  /// How long the main design tool takes.
  std::chrono::milliseconds tool{20};
  /// Over how long the hosts' reports are spread, evenly.
  std::chrono::milliseconds spread{0};
  /// Whether they share one project; otherwise each has a project and a home of its own.
  bool isShared = true;
  /// An existing directory for their files.
  std::string directory = "/tmp";
};

/// What one round of a farm came to.
struct Harvest {
  int toolStarts = 0;
  /// Scripts and rules files that a tool read and that were not complete and right.
  int wrongScripts = 0;
  int wrongRules = 0;
  /// Tools that read a script without the project's identifier.
  int withoutIdentifier = 0;
  /// Projects whose file has not the identifier that it had, or none where it was fresh.
  int lostIdentifiers = 0;
  /// Reports that the project's iteration does not count.
  int lostAttempts = 0;
  /// Files in the projects that are none of the documented ones.
  int filesLeftOver = 0;
  int exceptions = 0;
  /// Hosts that did not give an answer.
  int silentHosts = 0;
  /// The different identifiers that tools read, and that stand in the file at the end.
  int identifiers = 0;
  /// The different identifiers of the user that tools read, and that stand in the settings.
  int userIdentifiers = 0;
  /// The longest that a host took to report.
  std::chrono::milliseconds longestReport{0};
  /// From the release to the last host's end.
  std::chrono::duration<double> duration{0};
};

/// Runs one round. Throws std::runtime_error when a host cannot be started.
Harvest runFarm(const Farm& farm);

}  // namespace vestra_test

#endif
