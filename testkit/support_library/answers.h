#ifndef VESTRA_TESTKIT_SUPPORT_LIBRARY_ANSWERS_H
#define VESTRA_TESTKIT_SUPPORT_LIBRARY_ANSWERS_H

#include <optional>
#include <string>

namespace vestra::testkit {

/// What the stand-in support library is told to answer.
///
/// Each setting is looked up anew at each call, in the environment:
///
/// | setting     | environment variable       | meaning                                                    |
/// |-------------|----------------------------|------------------------------------------------------------|
/// | exec_path   | VESTRA_TESTKIT_EXEC_PATH   | command line of the main design tool                       |
/// | regid       | VESTRA_TESTKIT_REGID       | registration identifier                                    |
/// | environment | VESTRA_TESTKIT_ENVIRONMENT | environment text                                           |
/// | null        | VESTRA_TESTKIT_NULL        | which of the three are null instead, separated by commas   |
/// | calls       | VESTRA_TESTKIT_CALLS       | file that each call is appended to                         |
///
/// @param name  of the setting, as in the table
/// @return Nothing when it is set nowhere.
std::optional<std::string> setting(const std::string& name);

/// Whether an answer is to be null.
///
/// @param name  "exec_path", "regid" or "environment"
bool isNull(const std::string& name);

/// Appends to the file of calls, where there is one.
///
/// @param call  without a line end
void recordCall(const std::string& call);

}  // namespace vestra::testkit

#endif
