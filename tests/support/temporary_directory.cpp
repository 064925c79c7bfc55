#include "support/temporary_directory.h"

#include <boost/filesystem.hpp>

namespace vestra_test {

namespace fs = boost::filesystem;

TemporaryDirectory::TemporaryDirectory() {
  const fs::path parent = fs::canonical(fs::temp_directory_path());
  directory = (parent / fs::unique_path("vestra-test-%%%%%%%%%%%%")).string();
  fs::create_directory(directory);
}

TemporaryDirectory::~TemporaryDirectory() {
  boost::system::error_code ignored;
  fs::remove_all(directory, ignored);
}

}  // namespace vestra_test
