#ifndef VESTRA_TESTS_DESIGN_TOOL_SANITIZERS_H
#define VESTRA_TESTS_DESIGN_TOOL_SANITIZERS_H

namespace vestra::design_tool {

/// Whether the build watches memory or threads, which changes what an exhausted process does.
#if defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
constexpr bool IS_SANITIZED = true;
#else
constexpr bool IS_SANITIZED = false;
#endif
#elif defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool IS_SANITIZED = true;
#else
constexpr bool IS_SANITIZED = false;
#endif

}  // namespace vestra::design_tool

#endif
