#ifndef VESTRA_IDENTITY_RANDOM_UUID_H
#define VESTRA_IDENTITY_RANDOM_UUID_H

#include <string>

namespace Oza {

/// A new random (version 4) UUID in canonical form: 36 characters, lower-case
/// hexadecimal in groups of 8-4-4-4-12. Every bit comes from the kernel: getrandom(), or
/// /dev/urandom where the kernel lacks that.
///
/// @throws boost::uuids::entropy_error when the system gives no random bytes
///         (std::runtime_error with Boosts before 1.67, which lack that class).
std::string randomUuid();

}  // namespace Oza

#endif
