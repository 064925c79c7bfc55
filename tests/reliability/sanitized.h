#ifndef VESTRA_TESTS_RELIABILITY_SANITIZED_H
#define VESTRA_TESTS_RELIABILITY_SANITIZED_H

#include <cstddef>

namespace vestra_test {

/// Whether this is a sanitizer's build, whose processes are slow and whose runtime
/// makes system calls of its own.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
inline constexpr bool SANITIZED = true;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
inline constexpr bool SANITIZED = true;
#else
inline constexpr bool SANITIZED = false;
#endif
#else
inline constexpr bool SANITIZED = false;
#endif

/// Each so manieth system call of a host is tried.
inline constexpr std::size_t STEP = SANITIZED ? 5 : 1;

}  // namespace vestra_test

#endif
