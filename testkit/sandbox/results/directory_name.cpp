#include "sandbox/results/directory_name.h"

#include <boost/algorithm/string/replace.hpp>
#include <boost/filesystem/operations.hpp>

namespace vestra::testkit {

std::string withoutDirectory(std::string text, const std::string& directory) {
  boost::algorithm::replace_all(text, directory, "SANDBOX");
  return text;
}

std::string withoutGoneDirectory(const std::string& text, const std::string& directory) {
  return directory.empty() || boost::filesystem::exists(directory) ? text : withoutDirectory(text, directory);
}

}  // namespace vestra::testkit
