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
/// entry points.
///
/// @param directory  which it is made in
/// @return The library's path; empty where there is to be none.
/// @throws std::runtime_error when the answers name as missing what is unknown
std::string supportLibraryFor(const SupportAnswers& answers, const std::string& directory);

/// Loads the run's support library into the host's process, so that whatever searches for it by
/// its name (SONAME) finds this one.
///
/// @param path  as supportLibraryFor gave it
/// @throws std::runtime_error when it cannot be opened
void openSupportLibrary(const std::string& path);

}  // namespace vestra::testkit

#endif
