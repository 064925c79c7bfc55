#include "outbox.h"

#include <fmt/format.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <fstream>
#include <set>
#include <system_error>
#include <utility>

#include "diagnostic.h"
#include "reading/visible_text.h"

namespace vestra::design_tool {

using reading::inQuotes;
namespace fs = std::filesystem;

namespace {

[[noreturn]] void fail(const fs::path& place, const std::string& message) {
  throw DiagnosedError({place.string(), 0, message, "", 0, 0});
}

bool isForFileName(char letter) {
  return (letter >= 'a' && letter <= 'z') || (letter >= 'A' && letter <= 'Z') ||
         (letter >= '0' && letter <= '9') || letter == '-' || letter == '_';
}

std::string plainName(const std::string& name) {
  std::string plain;
  std::copy_if(name.begin(), name.end(), std::back_inserter(plain), isForFileName);
  return plain.empty() ? "report" : plain;
}

/// The number that a folder of the outbox takes, finished (`0007-kelvo`) or still hidden (`.0007`); 0 for
/// other names.
int numberOf(const std::string& entry) {
  const char* const begin = entry.data() + (entry.rfind('.', 0) == 0 ? 1 : 0);
  int number = 0;
  std::from_chars(begin, entry.data() + entry.size(), number);
  return std::max(number, 0);
}

int lastNumber(const fs::path& directory) {
  int last = 0;
  for (const fs::directory_entry& entry : fs::directory_iterator(directory)) {
    last = std::max(last, numberOf(entry.path().filename().string()));
  }
  return last;
}

bool isTaken(const fs::path& directory, int number) {
  const fs::directory_iterator entries(directory);
  return std::any_of(begin(entries), end(entries), [&](const fs::directory_entry& entry) {
    const std::string name = entry.path().filename().string();
    return name.rfind('.', 0) != 0 && numberOf(name) == number;
  });
}

/// A hidden folder that holds its number: making it fails for all but one. It goes away unless it is
/// published.
class Claim {
 public:
  explicit Claim(const fs::path& directory) : directory_(directory) {
    number_ = lastNumber(directory_) + 1;
    while (!take()) {
      ++number_;
    }
  }
  Claim(const Claim&) = delete;
  Claim& operator=(const Claim&) = delete;
  ~Claim() {
    std::error_code ignored;
    if (!is_published_) {
      fs::remove_all(folder(), ignored);
    }
  }

  fs::path folder() const { return directory_ / fmt::format(".{:04}", number_); }

  fs::path publish(const std::string& name) {
    const fs::path place = directory_ / fmt::format("{:04}-{}", number_, name);
    fs::rename(folder(), place);
    is_published_ = true;
    return place;
  }

 private:
  /// A report that was published since the numbers were read no longer holds its hidden folder.
  bool take() {
    if (::mkdir(folder().c_str(), 0777) != 0) {
      if (errno == EEXIST) {
        return false;
      }
      throw fs::filesystem_error("mkdir", folder(), std::error_code(errno, std::generic_category()));
    }
    if (!isTaken(directory_, number_)) {
      return true;
    }
    fs::remove(folder());
    return false;
  }

  fs::path directory_;
  int number_ = 0;
  bool is_published_ = false;
};

void write(const fs::path& path, const std::string& content) {
  std::ofstream file(path, std::ios::binary);
  file.write(content.data(), static_cast<std::streamsize>(content.size()));
  file.close();
  if (!file) {
    fail(path, std::string("can't be written: ") + std::strerror(errno));
  }
}

void refuseSharedNames(const fs::path& directory, const std::vector<KeptFile>& files) {
  std::set<std::string> names;
  for (const KeptFile& file : files) {
    if (names.insert(file.name).second) {
      continue;
    }
    fail(directory, fmt::format("the outbox can't keep two files named {}", inQuotes(file.name)));
  }
}

}  // namespace

Outbox::Outbox(fs::path directory) : directory_(std::move(directory)) {
  std::error_code error;
  fs::create_directories(directory_, error);
  if (error) {
    fail(directory_, "the outbox can't be made: " + error.message());
  }
}

fs::path Outbox::keep(const std::string& name, const std::vector<KeptFile>& files) const {
  refuseSharedNames(directory_, files);
  try {
    Claim claim(directory_);
    for (const KeptFile& file : files) {
      write(claim.folder() / file.name, file.content);
    }
    return claim.publish(plainName(name));
  } catch (const fs::filesystem_error& error) {
    fail(directory_, "the outbox can't be written: " + error.code().message());
  }
}

}  // namespace vestra::design_tool
