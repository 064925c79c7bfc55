#ifndef VESTRA_TESTS_SUPPORT_FAILING_SYSTEM_CALL_H
#define VESTRA_TESTS_SUPPORT_FAILING_SYSTEM_CALL_H

#include <cstdint>
#include <optional>

namespace vestra_test {

/// Lets the kernel refuse a system call with this error from now on, to the end of the
/// process: for a child process.
/// @param third  Refuses only the calls whose third argument this is.
/// @throws std::runtime_error where the kernel has no such filter.
void failSystemCall(long number, int error, std::optional<std::uint32_t> third = std::nullopt);

}  // namespace vestra_test

#endif
