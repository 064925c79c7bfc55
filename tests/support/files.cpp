#include "support/files.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <fstream>
#include <iterator>
#include <locale>
#include <sstream>
#include <stdexcept>
#include <system_error>

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

std::vector<std::string> linesIn(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) {
    lines.push_back(line);
  }
  return lines;
}

void dateFile(const std::string& path, std::chrono::system_clock::time_point time) {
  const auto sinceEpoch = time.time_since_epoch();
  const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(sinceEpoch);
  const timespec moment{seconds.count(), std::chrono::nanoseconds(sinceEpoch - seconds).count()};
  const std::array<timespec, 2> times{moment, moment};
  if (utimensat(AT_FDCWD, path.c_str(), times.data(), 0) != 0) {
    throw std::system_error(errno, std::generic_category(), "cannot date " + path);
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
