#ifndef VESTRA_TESTKIT_SANDBOX_RESULTS_FILES_LEFT_H
#define VESTRA_TESTKIT_SANDBOX_RESULTS_FILES_LEFT_H

#include <cstdint>
#include <string>

#include <vestra/testkit/host_run.h>

namespace vestra::testkit {

Settings parseSettings(const std::string& text);
Identity parseIdentity(const std::string& text);

/// An identity text whose reports were sent `seconds` earlier. Times of 0, for
/// never, and lines that hold no time stay.
std::string agedIdentity(const std::string& text, std::int64_t seconds);

/// An identity text, of four lines or more, with another project identifier.
std::string identityWithProject(const std::string& text, const std::string& project);

}  // namespace vestra::testkit

#endif
