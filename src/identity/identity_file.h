#ifndef VESTRA_IDENTITY_IDENTITY_FILE_H
#define VESTRA_IDENTITY_IDENTITY_FILE_H

#include <optional>
#include <string>

#include "files/descriptor.h"
#include "files/time_budget.h"

namespace Oza {

// The concurrency design: docs/architecture.md, "Many hosts in one project".

/// The text of an open identity file, read under a shared lock if one can be taken. Nothing
/// after a read error.
std::optional<std::string> readIdentityText(const Descriptor& file, TimeBudget& timeBudget);

/// The text of an identity file that was found empty. If the file was created just now,
/// another host is initialising the project: waits for its record. Still empty if that
/// times out.
std::optional<std::string> awaitIdentityText(const Descriptor& file, TimeBudget& timeBudget);

/// The text of an identity file that was found corrupt, once two readings agree.
/// Without a lock, another host may have been writing during the first.
std::optional<std::string> rereadIdentityText(const Descriptor& file, std::string corrupt,
                                              TimeBudget& timeBudget);

/// The text that a counted attempt overwrites. Nothing for a file that cannot be read and
/// must not be overwritten; empty for one that cannot be read and is empty.
std::optional<std::string> identityTextToOverwrite(const Descriptor& file);

}  // namespace Oza

#endif
