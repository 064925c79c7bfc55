#ifndef VESTRA_TESTS_SUPPORT_IDENTITY_TEXT_H
#define VESTRA_TESTS_SUPPORT_IDENTITY_TEXT_H

#include <string>

namespace vestra_test {

/// The lines of a project identity file, in their order. Each may be a regular expression.
inline std::string identityText(const std::string& lastSendTimeDefault, const std::string& lastSendTimeType1,
                                const std::string& iteration, const std::string& orbeloFlow,
                                const std::string& projectId) {
  return lastSendTimeDefault + "\n" + lastSendTimeType1 + "\n" + iteration + "\n" + orbeloFlow + "\n" +
         projectId + "\n";
}

// Regular expressions for lines that differ in each run.
inline constexpr const char* ANY_TIME = "[0-9]{10}";
inline constexpr const char* ANY_UUID = "[0-9a-f-]{36}";

}  // namespace vestra_test

#endif
