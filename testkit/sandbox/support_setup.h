#ifndef VESTRA_TESTKIT_SANDBOX_SUPPORT_SETUP_H
#define VESTRA_TESTKIT_SANDBOX_SUPPORT_SETUP_H

#include <string>

#include "sandbox/run_setup.h"

namespace vestra::testkit {

/// Whether the answers name this as missing.
bool isMissing(const SupportAnswers& answers, const std::string& what);

/// The command line of the main design tool that the support library is to answer.
std::string toolFor(const SupportAnswers& answers);

/// Makes the support library of one run where the stand-in does not do: one that lacks
/// entry points, or a file that is no library where there is to be none.
///
/// @param directory  which it is made in
/// @return The library's path.
/// @throws std::runtime_error when the answers name as missing what is unknown
std::string supportLibraryFor(const SupportAnswers& answers, const std::string& directory);

/// Opens the support library in the host's process, so that the host finds it by its name.
///
/// @param path  as supportLibraryFor gave it
/// @throws std::runtime_error when it cannot be opened or, where none is to be there,
///                            another one is in the loader's reach
void openSupportLibrary(const SupportAnswers& answers, const std::string& path);

}  // namespace vestra::testkit

#endif
