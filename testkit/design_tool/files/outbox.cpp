#include "design_tool/files/outbox.h"

#include <algorithm>
#include <charconv>
#include <exception>
#include <iterator>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <fmt/format.h>

#include "design_tool/diagnosis/diagnostic.h"
#include "design_tool/files/output_file.h"

namespace vestra::design_tool {

namespace fs = std::filesystem;

namespace {

constexpr int HIGHEST_NUMBER = 999'999'999;

bool isForFileName(char letter) {
  return (letter >= 'a' && letter <= 'z') || (letter >= 'A' && letter <= 'Z') ||
         (letter >= '0' && letter <= '9') || letter == '-' || letter == '_';
}

std::string plainName(const std::string& name) {
  std::string plain;
  std::copy_if(name.begin(), name.end(), std::back_inserter(plain), isForFileName);
  return plain.empty() ? "report" : plain;
}

/// Of a complete folder (`0007-kelvo`) or a hidden one (`.0007-kelvo`); 0 for other names and for numbers
/// that could overflow.
int numberOf(const std::string& entry) {
  const char* const begin = entry.data() + (entry.rfind('.', 0) == 0 ? 1 : 0);
  int number = 0;
  std::from_chars(begin, entry.data() + entry.size(), number);
  return number < 0 || number >= HIGHEST_NUMBER ? 0 : number;
}

int lastNumber(const fs::path& directory) {
  int last = 0;
  for (const fs::directory_entry& entry : fs::directory_iterator(directory)) {
    last = std::max(last, numberOf(entry.path().filename().string()));
  }
  return last;
}

/// An exclusive flock on a directory, so that no other tool takes the same number.
class DirectoryLock {
 public:
  explicit DirectoryLock(const fs::path& directory)
      : descriptor(::open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
    ::flock(descriptor, LOCK_EX);
  }
  DirectoryLock(const DirectoryLock&) = delete;
  DirectoryLock& operator=(const DirectoryLock&) = delete;
  ~DirectoryLock() { ::close(descriptor); }

 private:
  int descriptor;
};

}  // namespace

Outbox::Outbox(fs::path place) : directory(std::move(place)) {
  std::error_code error;
  fs::create_directories(directory, error);
  if (error) {
    throw DiagnosedError(directory.string(), "the outbox cannot be created: " + error.message());
  }
}

fs::path Outbox::keep(const std::string& name, const std::map<std::string, std::string>& files) const {
  const DirectoryLock lock(directory);
  fs::path hidden;
  try {
    const std::string folder = fmt::format("{:04}-{}", lastNumber(directory) + 1, plainName(name));
    hidden = directory / ("." + folder);
    fs::create_directory(hidden);
    for (const auto& [file, content] : files) {
      replaceFile(hidden / file, content);
    }
    fs::rename(hidden, directory / folder);
    return directory / folder;
  } catch (const std::exception& error) {
    std::error_code ignored;
    fs::remove_all(hidden, ignored);
    const auto* const system = dynamic_cast<const fs::filesystem_error*>(&error);
    throw DiagnosedError(directory.string(), std::string("the outbox cannot be written: ") +
                                                 (system ? system->code().message() : error.what()));
  }
}

}  // namespace vestra::design_tool
