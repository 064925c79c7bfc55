#ifndef VESTRA_TESTKIT_RECORDER_EXCEPTION_H
#define VESTRA_TESTKIT_RECORDER_EXCEPTION_H

#include <string>
#include <string_view>
#include <vector>

#include <vestra/testkit/host_run.h>

namespace vestra::testkit {

/// What is known of the exception that is being handled.
Exception caughtException();

/// The exception as the texts that a record keeps of it.
std::vector<std::string_view> fieldsOf(const Exception& exception);

/// Undoes fieldsOf.
///
/// @param fields  at least two
Exception exceptionFrom(std::vector<std::string> fields);

}  // namespace vestra::testkit

#endif
