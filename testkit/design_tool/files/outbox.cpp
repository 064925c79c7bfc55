#include "design_tool/files/outbox.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <fstream>
#include <set>
#include <system_error>
#include <utility>

#include <sys/stat.h>

#include <fmt/format.h>

#include "design_tool/diagnosis/diagnostic.h"
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
  explicit Claim(const fs::path& outbox) : directory(outbox) {
    number = lastNumber(directory) + 1;
    while (!take()) {
      ++number;
    }
  }
  Claim(const Claim&) = delete;
  Claim& operator=(const Claim&) = delete;
  ~Claim() {
    std::error_code ignored;
    if (!isPublished) {
      fs::remove_all(folder(), ignored);
    }
  }

  fs::path folder() const { return directory / fmt::format(".{:04}", number); }

  fs::path publish(const std::string& name) {
    const fs::path place = directory / fmt::format("{:04}-{}", number, name);
    fs::rename(folder(), place);
    isPublished = true;
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
    if (!isTaken(directory, number)) {
      return true;
    }
    fs::remove(folder());
    return false;
  }

  fs::path directory;
  int number = 0;
  bool isPublished = false;
};

void write(const fs::path& path, const std::string& content) {
  std::ofstream file(path, std::ios::binary);
  file.write(content.data(), static_cast<std::streamsize>(content.size()));
  file.close();
  if (!file) {
    fail(path, std::string("cannot be written: ") + std::strerror(errno));
  }
}

void refuseSharedNames(const fs::path& directory, const std::vector<KeptFile>& files) {
  std::set<std::string> names;
  for (const KeptFile& file : files) {
    if (names.insert(file.name).second) {
      continue;
    }
    fail(directory, fmt::format("the outbox cannot keep two files named {}", inQuotes(file.name)));
  }
}

}  // namespace

Outbox::Outbox(fs::path place) : directory(std::move(place)) {
  std::error_code error;
  fs::create_directories(directory, error);
  if (error) {
    fail(directory, "the outbox cannot be made: " + error.message());
  }
}

fs::path Outbox::keep(const std::string& name, const std::vector<KeptFile>& files) const {
  refuseSharedNames(directory, files);
  try {
    Claim claim(directory);
    for (const KeptFile& file : files) {
      write(claim.folder() / file.name, file.content);
    }
    return claim.publish(plainName(name));
  } catch (const fs::filesystem_error& error) {
    fail(directory, "the outbox cannot be written: " + error.code().message());
  }
}

}  // namespace vestra::design_tool
