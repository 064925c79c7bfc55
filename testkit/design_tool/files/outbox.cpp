#include "design_tool/files/outbox.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <set>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>

#include <fmt/format.h>

#include "design_tool/diagnosis/diagnostic.h"
#include "design_tool/files/descriptor.h"
#include "design_tool/files/new_file.h"
#include "reading/visible_text.h"

namespace vestra::design_tool {

using reading::inQuotes;
namespace fs = std::filesystem;

namespace {

[[noreturn]] void fail(const fs::path& place, const std::string& message) {
  throw DiagnosedError({place.string(), 0, message, "", 0, 0});
}

[[noreturn]] void failToWrite(const fs::path& outbox, const std::error_code& error) {
  fail(outbox, "the outbox cannot be written: " + error.message());
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

/// The hidden folder holds the number: making it fails for all but one.
PendingCopy::PendingCopy(fs::path outbox, std::string wanted)
    : directory(std::move(outbox)), name(std::move(wanted)), number(lastNumber(directory) + 1) {
  while (!take()) {
    ++number;
  }
}

PendingCopy::~PendingCopy() {
  std::error_code ignored;
  if (!isPublished) {
    fs::remove_all(folder(), ignored);
  }
}

void PendingCopy::add(const KeptFile& file) const {
  const Descriptor place(::open(folder().c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
  const int error = place.isOpen() ? writeNewFile(place.get(), file.name, file.content) : errno;
  if (error != 0) {
    fail(folder() / file.name, std::string("cannot be written: ") + std::strerror(error));
  }
}

fs::path PendingCopy::publish() {
  fs::path place = directory / fmt::format("{:04}-{}", number, name);
  std::error_code error;
  fs::rename(folder(), place, error);
  if (error) {
    failToWrite(directory, error);
  }
  isPublished = true;
  return place;
}

fs::path PendingCopy::folder() const { return directory / fmt::format(".{:04}", number); }

/// A report that was published since the numbers were read no longer holds its hidden folder.
bool PendingCopy::take() {
  if (::mkdir(folder().c_str(), 0777) != 0) {
    if (errno == EEXIST) {
      return false;
    }
    failToWrite(directory, std::error_code(errno, std::generic_category()));
  }
  if (!isTaken(directory, number)) {
    return true;
  }
  fs::remove(folder());
  return false;
}

Outbox::Outbox(fs::path place) : directory(std::move(place)) {
  std::error_code error;
  fs::create_directories(directory, error);
  if (error) {
    fail(directory, "the outbox cannot be made: " + error.message());
  }
}

std::unique_ptr<PendingCopy> Outbox::prepare(const std::string& name,
                                             const std::vector<KeptFile>& files) const {
  refuseSharedNames(directory, files);
  try {
    auto copy = std::make_unique<PendingCopy>(directory, plainName(name));
    for (const KeptFile& file : files) {
      copy->add(file);
    }
    return copy;
  } catch (const fs::filesystem_error& error) {
    failToWrite(directory, error.code());
  }
}

}  // namespace vestra::design_tool
