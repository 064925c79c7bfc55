#ifndef VESTRA_INSPECT_REHEARSE_REHEARSED_H
#define VESTRA_INSPECT_REHEARSE_REHEARSED_H

#include <optional>
#include <string>
#include <vector>

#include "facts/facts.h"
#include "rehearse/directory.h"

namespace vestra::inspect {

/// One report of a rehearsal.
struct Rehearsed {
  /// Where it is kept; empty for one that was not written.
  std::string folder;
  /// The project.
  std::string directory;
  /// The script of a report that was not intercepted; empty for one that was.
  std::string leakedScript;
  /// The fingerprint of the project's identity file before.
  std::string before;
  /// How `send` ended: "t", "f", or "l" or "r" and the text of a logic or runtime error. Empty when
  /// that is not known.
  std::string answer;
  /// What the shell would have been given.
  std::optional<std::string> command;
  std::optional<ReportFacts> report;
  /// Identifiers in it that the real run will draw anew: "project_id", "random_id".
  std::vector<std::string> examples;

  bool isLeak() const { return !leakedScript.empty(); }
  bool isUnknown() const { return !isLeak() && answer.empty(); }
  /// "reports", "not_due", "nothing", "throws", "unknown", "leaked"
  const char* outcome() const;
};

/// What a rehearsal left.
struct Rehearsal {
  /// Whose reports they are; the reports among them.
  Facts facts;
  std::vector<Rehearsed> reports;
  /// Scripts of reports that were not intercepted, and files that changed though they should not.
  std::vector<std::string> leaked;
  /// Processes whose reports may not have been intercepted, a phrase each.
  std::vector<std::string> unobserved;
  /// The status to leave with.
  int status = 0;

  /// Whether every report that was seen was intercepted.
  bool isCertain() const;
  /// The first line of its account.
  std::string verdict() const;
};

/// A directory and its path.
struct Place {
  const Directory& directory;
  std::string path;
};

/// Reads what was recorded, and keeps each report in a folder with the same number: script and rules file.
Rehearsal readRehearsal(const Place& kept, const Place& record, const HostContext& context);

}  // namespace vestra::inspect

#endif
