#ifndef VESTRA_INSPECT_FACTS_SUPPORT_FACTS_H
#define VESTRA_INSPECT_FACTS_SUPPORT_FACTS_H

#include <string>
#include <vector>

#include "facts/host_context.h"

namespace vestra::inspect {

enum class SupportState {
  found,
  /// The loader finds none.
  absent,
  /// The loader cannot load it, or something that it needs.
  broken,
  /// Loading it ends the process.
  crashes,
  unknown,
};

/// What the system's loader says of the support library, and whether it would do.
struct SupportFacts {
  SupportState state = SupportState::unknown;
  /// The library; empty when none was found.
  std::string path;
  /// Why it is not found, in the loader's words, or why that is not known.
  std::string reason;
  /// The files that the loader tried, where their directory exists.
  std::vector<std::string> tried;
  std::vector<std::string> missingEntryPoints;
  /// The test kit's, which transmits nothing.
  bool isStandIn = false;

  bool opens() const { return state == SupportState::found; }
  bool lacks(const std::string& entryPoint) const;
};

SupportFacts lookAtSupport(const HostContext& context);

/// Whether the loader withholds LD_LIBRARY_PATH and LD_PRELOAD from a program: set-user-ID,
/// set-group-ID or with capabilities.
bool isPrivileged(const std::string& program);

/// "found", "absent", "broken", "crashes", "unknown"
const char* nameOf(SupportState state);

}  // namespace vestra::inspect

#endif
