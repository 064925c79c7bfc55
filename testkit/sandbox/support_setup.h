#ifndef VESTRA_TESTKIT_SANDBOX_SUPPORT_SETUP_H
#define VESTRA_TESTKIT_SANDBOX_SUPPORT_SETUP_H

#include <string>

#include "sandbox/run_setup.h"

namespace vestra::testkit {

/// The command line of the main design tool that the support library is to answer.
std::string toolFor(const SupportAnswers& answers);

/// The support library's path; empty where there is to be none.
///
/// @throws std::runtime_error when the answers name as missing what is unknown
std::string supportLibraryFor(const SupportAnswers& answers);

/// The symbols that it is to lack, each with a comma behind it.
std::string missingEntryPointsOf(const SupportAnswers& answers);

/// Loads the run's support library into the host's process, so that whatever searches for it by
/// its name (SONAME) finds this one.
///
/// @param path  as supportLibraryFor gave it
/// @throws std::runtime_error when it cannot be opened
void openSupportLibrary(const std::string& path);

}  // namespace vestra::testkit

#endif
