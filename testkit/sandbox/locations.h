#ifndef VESTRA_TESTKIT_SANDBOX_LOCATIONS_H
#define VESTRA_TESTKIT_SANDBOX_LOCATIONS_H

#include <string>

namespace vestra::testkit {

/// The directory that this library was loaded from.
std::string directoryOfThisLibrary();

}  // namespace vestra::testkit

#endif
