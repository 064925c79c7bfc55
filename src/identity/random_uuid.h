#ifndef VESTRA_IDENTITY_RANDOM_UUID_H
#define VESTRA_IDENTITY_RANDOM_UUID_H

#include <string>

namespace Oza {

/// A new random (version 4) UUID in canonical form: 36 characters, lower-case
/// hexadecimal in groups of 8-4-4-4-12. The generator is made and seeded from the
/// system's random source for this one call.
///
/// @throws boost::uuids::entropy_error when the system gives no random bytes.
std::string randomUuid();

}  // namespace Oza

#endif
