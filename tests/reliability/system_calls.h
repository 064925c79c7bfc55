#ifndef VESTRA_TESTS_RELIABILITY_SYSTEM_CALLS_H
#define VESTRA_TESTS_RELIABILITY_SYSTEM_CALLS_H

#include <string>
#include <vector>

namespace vestra_test {

/// Which of a system call's arguments says what file it is about. In a call with
/// both, an empty path means the descriptor before it.
enum class Subject { NONE, DESCRIPTOR, PATH_FIRST, PATH_SECOND };

Subject subjectOf(long number);

/// Its name; its number in words for one that is not known here.
std::string nameOf(long number);

/// Whether it is one that a host is expected to make.
bool isKnown(long number);

/// Whether it manages memory. A sanitizer ends the process when one of those fails.
bool managesMemory(long number);

/// Whether it asks for a file's status, or removes a file: which of several calls does is the
/// C library's choice and Boost's.
bool asksForStatus(long number);
bool removes(long number);

/// The errors to expect of a machine in trouble, as errno values. None for calls that
/// fail only when they are used wrongly.
const std::vector<int>& errorsOf(long number);

}  // namespace vestra_test

#endif
