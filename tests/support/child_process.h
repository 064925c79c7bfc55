#ifndef VESTRA_TESTS_SUPPORT_CHILD_PROCESS_H
#define VESTRA_TESTS_SUPPORT_CHILD_PROCESS_H

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace vestra_test {

/// What was seen in the child, as a text to compare in the parent.
using Observation = std::function<std::string()>;

// Each gives what the observation returned; an exception's text follows
// "exception: ". A child that ends in any other way throws std::runtime_error.

/// Observes in a process of its own, whose changes to the process leave no trace.
std::string inChildProcess(const Observation& observe);

/// Observes as a user whom permission bits stop: root does it as user 65534 in a
/// process of its own, anybody else right here.
std::string asOrdinaryUser(const Observation& observe);

/// Observes in a process of its own whose root directory is the given one. Only root
/// can.
std::string inRootDirectory(const std::string& directory, const Observation& observe);

/// Lets the kernel refuse a system call with this error from now on, to the end of the
/// process: for a child process.
/// @param third  Refuses only the calls whose third argument this is.
/// @throws std::runtime_error where the kernel has no such filter.
void failSystemCall(long number, int error, std::optional<std::uint32_t> third = std::nullopt);

}  // namespace vestra_test

#endif
