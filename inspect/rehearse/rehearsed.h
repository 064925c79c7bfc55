#ifndef VESTRA_INSPECT_REHEARSE_REHEARSED_H
#define VESTRA_INSPECT_REHEARSE_REHEARSED_H

#include <optional>
#include <string>
#include <vector>

#include "facts/facts.h"
#include "render/page.h"

namespace vestra::inspect {

/// One report that was held back.
struct Rehearsed {
  /// Where it is kept.
  std::string folder;
  /// The project; empty for one that only the second belt caught.
  std::string directory;
  /// How `send` ended: "t", "f", or "l" or "r" and the text of a logic or runtime error. Empty when
  /// that is not known.
  std::string answer;
  /// What the shell would have been given.
  std::optional<std::string> command;
  std::optional<ReportFacts> report;
  /// Identifiers in it that the real run will draw anew: "project_id", "random_id".
  std::vector<std::string> examples;

  bool isCaught() const { return directory.empty(); }
  bool isUnknown() const { return !isCaught() && answer.empty(); }
  /// "reports", "not_due", "nothing", "throws", "unknown", "caught"
  const char* outcome() const;
};

/// What a rehearsal left.
struct Rehearsal {
  /// Whose reports they are; the reports among them.
  Facts facts;
  std::vector<Rehearsed> reports;
  /// Files that the program changed though it was to be held back.
  std::vector<std::string> changed;
  /// The status to leave with.
  int status = 0;

  /// Whether nothing went, as far as can be seen.
  bool isCertain() const;
  /// The first line of its account.
  std::string verdict() const;
};

/// Reads what the shim and the catching library kept in a rehearsal's directory, and keeps each report as a
/// document beside its script.
Rehearsal readRehearsal(const std::string& directory, const View& view);

void writeRehearsal(const Rehearsal& rehearsal, Page& page);

}  // namespace vestra::inspect

#endif
