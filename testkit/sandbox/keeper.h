#ifndef VESTRA_TESTKIT_SANDBOX_KEEPER_H
#define VESTRA_TESTKIT_SANDBOX_KEEPER_H

#include <chrono>
#include <string>

namespace vestra::testkit {

/// Forks: returns in the child only. This process then waits for the child's end, ends what the
/// child has started and left running, writes how all that went, and exits.
///
/// @param endFile   Gets the fields status, "timed out" or "ended", and the command line of each
///                  process that outlived the child.
/// @param deadline  When the child is ended.
void beKeeper(const std::string& endFile, std::chrono::steady_clock::time_point deadline);

}  // namespace vestra::testkit

#endif
