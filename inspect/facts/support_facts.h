#ifndef VESTRA_INSPECT_FACTS_SUPPORT_FACTS_H
#define VESTRA_INSPECT_FACTS_SUPPORT_FACTS_H

#include <optional>
#include <string>
#include <vector>

#include "facts/looked_file.h"
#include "facts/view.h"
#include "loader/library_search.h"

namespace vestra::inspect {

/// What the loader would take for the support library, and whether it would do.
struct SupportFacts {
  SearchResult search;
  LookedFile file;
  /// Libraries that it needs and that are not found.
  std::vector<std::string> missingNeeds;
  std::vector<std::string> missingEntryPoints;
  /// On a file system that forbids programs, or not readable.
  bool mayNotRun = false;
  /// The test kit's, which transmits nothing.
  bool isStandIn = false;
  /// Directories of the search whose files others may change.
  std::vector<std::string> writableByOthers;
  /// The program, when one was named.
  std::optional<ElfFile> host;
  /// Set-user-ID, set-group-ID or with capabilities.
  bool hostIsPrivileged = false;
  /// Where the library would be if the host's RUNPATH counted; empty otherwise.
  std::string inRunpath;

  bool opens() const { return !search.chosen.empty() && missingNeeds.empty() && !mayNotRun; }
};

SupportFacts lookAtSupport(const View& view);

/// Whether the loader withholds LD_LIBRARY_PATH and LD_PRELOAD from a program.
bool isPrivileged(const std::string& program);

}  // namespace vestra::inspect

#endif
