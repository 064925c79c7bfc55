#ifndef VESTRA_TESTKIT_SANDBOX_RESULTS_REASONS_H
#define VESTRA_TESTKIT_SANDBOX_RESULTS_REASONS_H

#include <string>

namespace vestra::testkit {

/// What `system` returned, in words: "status 1", "signal 9".
std::string statusText(int status);

/// The text with "SANDBOX" wherever it names the directory.
std::string withoutDirectory(std::string text, const std::string& directory);

/// The same when there is no such directory any more.
std::string withoutGoneDirectory(const std::string& text, const std::string& directory);

}  // namespace vestra::testkit

#endif
