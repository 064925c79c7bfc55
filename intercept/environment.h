#ifndef VESTRA_INTERCEPT_ENVIRONMENT_H
#define VESTRA_INTERCEPT_ENVIRONMENT_H

#include <cstddef>

namespace vestra::intercept {

/// Finds the functions that start programs behind those of programs.cpp.
void findNextFunctions();

/// Whether the environment lacks carried variables or preloaded objects.
bool isIncomplete(char* const* environment);

/// Whether it lacks a carried variable, and not only preloaded objects.
bool isCleared(char* const* environment);

/// How much memory `complete` needs.
std::size_t sizeOfCompleted(char* const* environment);

/// The environment with all that it lacks. Async-signal-safe: it runs between vfork and exec.
///
/// @param memory  of sizeOfCompleted
char** complete(char* const* environment, void* memory);

}  // namespace vestra::intercept

#endif
