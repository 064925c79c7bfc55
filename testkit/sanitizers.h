#ifndef VESTRA_TESTKIT_SANITIZERS_H
#define VESTRA_TESTKIT_SANITIZERS_H

namespace vestra {

#if !defined(__has_feature)
#define __has_feature(feature) 0
#endif

// What the compiler builds in: GCC defines macros, clang has features.
#if defined(__SANITIZE_ADDRESS__)
inline constexpr bool HAS_ADDRESS_SANITIZER = true;
#else
inline constexpr bool HAS_ADDRESS_SANITIZER = __has_feature(address_sanitizer);
#endif
#if defined(__SANITIZE_THREAD__)
inline constexpr bool HAS_THREAD_SANITIZER = true;
#else
inline constexpr bool HAS_THREAD_SANITIZER = __has_feature(thread_sanitizer);
#endif

}  // namespace vestra

#endif
