#include "support/files.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <locale>
#include <stdexcept>

#include <boost/filesystem.hpp>

namespace vestra_test {

namespace fs = boost::filesystem;

namespace {

// Tests change the global locale, which may convert what a file stream reads.
template <typename FileStream>
void openForBytes(FileStream& stream, const std::string& path, std::ios::openmode mode) {
  stream.imbue(std::locale::classic());
  stream.open(path, mode);
}

}  // namespace

std::string readFile(const std::string& path) {
  std::ifstream in;
  openForBytes(in, path, std::ios::binary);
  if (!in) {
    throw std::runtime_error("cannot read " + path);
  }
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

void writeFile(const std::string& path, const std::string& bytes) {
  fs::create_directories(fs::path(path).parent_path());
  std::ofstream out;
  openForBytes(out, path, std::ios::binary | std::ios::trunc);
  out << bytes;
  if (!out.flush()) {
    throw std::runtime_error("cannot write " + path);
  }
}

bool exists(const std::string& path) { return fs::symlink_status(path).type() != fs::file_not_found; }

std::vector<std::string> namesIn(const std::string& directory) {
  std::vector<std::string> names;
  if (fs::is_directory(directory)) {
    for (const fs::directory_entry& entry : fs::directory_iterator(directory)) {
      names.push_back(entry.path().filename().string());
    }
  }
  std::sort(names.begin(), names.end());
  return names;
}

}  // namespace vestra_test
