#ifndef VESTRA_IDENTITY_IDENTITY_FILE_H
#define VESTRA_IDENTITY_IDENTITY_FILE_H

#include <optional>
#include <string>

#include "files/descriptor.h"
#include "files/time_budget.h"

namespace Oza {

/// The text of an open identity file, read while no other host writes it. Nothing after
/// a read error.
std::optional<std::string> readIdentityText(const Descriptor& file, TimeBudget& timeBudget);

/// The text of an identity file that was found empty. Where the file was made just now,
/// another host is making the project new: its record is waited for. Still empty where
/// none comes.
std::optional<std::string> awaitIdentityText(const Descriptor& file, TimeBudget& timeBudget);

/// The text of an identity file that was found damaged, once two readings agree.
/// Without a lock, the first may have met another host's writing.
std::optional<std::string> rereadIdentityText(const Descriptor& file, std::string damaged,
                                              TimeBudget& timeBudget);

}  // namespace Oza

#endif
