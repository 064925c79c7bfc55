// Runs a fuzz target on files: those that are named and those in named directories.

#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <string>

#include <boost/filesystem.hpp>

#include "support/files.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

namespace fs = boost::filesystem;

int replay(const fs::path& path) {
  if (fs::is_directory(path)) {
    int count = 0;
    for (const auto& entry : fs::directory_iterator(path)) {
      count += replay(entry.path());
    }
    return count;
  }
  std::cout << path.string() << std::endl;
  const std::string bytes = vestra_test::readFile(path.string());
  LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
  return 1;
}

}  // namespace

int main(int argc, char** argv) {
  int count = 0;
  for (int i = 1; i < argc; ++i) {
    count += replay(argv[i]);
  }
  std::cout << count << " inputs replayed\n";
  return count > 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
