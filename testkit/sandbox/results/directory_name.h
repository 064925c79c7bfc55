#ifndef VESTRA_TESTKIT_SANDBOX_RESULTS_DIRECTORY_NAME_H
#define VESTRA_TESTKIT_SANDBOX_RESULTS_DIRECTORY_NAME_H

#include <string>

namespace vestra::testkit {

/// The text with "SANDBOX" wherever it names the directory.
std::string withoutDirectory(std::string text, const std::string& directory);

/// The text, without the directory's name when there is no such directory any more.
std::string withoutGoneDirectory(const std::string& text, const std::string& directory);

}  // namespace vestra::testkit

#endif
