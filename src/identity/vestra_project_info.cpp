#include "identity/vestra_project_info.h"

#include <ctime>
#include <fstream>
#include <stdexcept>
#include <utility>

#include <boost/filesystem/operations.hpp>

#include "files/file_size_signal.h"
#include "files/open_file.h"
#include "files/path_text.h"
#include "files/read_line.h"
#include "handler/vestra_handler.h"
#include "identity/random_uuid.h"

namespace Oza {
namespace {

constexpr std::size_t FILE_NAME_LENGTH = 19;
constexpr std::int64_t SECONDS_PER_DAY = 86400;

/// Reads one line and, unless it is empty, makes a number of it.
template <typename Number, typename Convert>
void readNumber(std::istream& in, Number& number, Convert convert) {
  std::string line;
  if (readLine(in, line) && !line.empty()) {
    number = static_cast<Number>(convert(line));
  }
}

}  // namespace

void readProjectIdentity(std::istream& in, ProjectIdentity& identity) {
  const auto longNumber = [](const std::string& line) { return std::stoll(line); };
  const auto number = [](const std::string& line) { return std::stoi(line); };
  readNumber(in, identity.lastSendTimeDefault, longNumber);
  readNumber(in, identity.lastSendTimeType1, longNumber);
  readNumber(in, identity.iteration, longNumber);
  readNumber(in, identity.orbeloFlow, number);
  std::string line;
  if (readLine(in, line)) {
    identity.projectId = line;
  }
}

std::array<std::string, 5> formatProjectIdentity(const ProjectIdentity& identity) {
  return {std::to_string(identity.lastSendTimeDefault), std::to_string(identity.lastSendTimeType1),
          std::to_string(identity.iteration), std::to_string(identity.orbeloFlow), identity.projectId};
}

// Compared without a difference of the two, which a stored time near the edge of
// its type would overflow.
bool isReportDue(std::int64_t now, std::int64_t lastSendTime) { return lastSendTime < now - SECONDS_PER_DAY; }

VestraProjectInfo::VestraProjectInfo(std::string path, VestraHandler* handler)
    : filePath(std::move(path)), owner(handler) {}

// A path that cannot be examined counts as absent too; making the file there
// tells whether it can be used.
bool VestraProjectInfo::loadOrCreate() {
  try {
    boost::filesystem::file_status status = statusOf(filePath);
    if (!boost::filesystem::exists(status)) {
      startNewProject();
      status = statusOf(filePath);
    }
    std::fstream file;
    openFile(file, filePath, std::ios_base::in | std::ios_base::out, status);
    return file.is_open() ? load(file) : makeEmptyFile();
  } catch (...) {
    return false;
  }
}

bool VestraProjectInfo::recordSendAttempt() {
  const std::int64_t now = std::time(nullptr);
  const bool due = isReportDue(now, lastSendTime());
  if (due) {
    lastSendTime() = now;
  }
  ++identity.iteration;
  writeFile();
  return due;
}

const std::string& VestraProjectInfo::getProjectId() const { return identity.projectId; }

std::uint64_t VestraProjectInfo::getIteration() const { return identity.iteration; }

std::int32_t VestraProjectInfo::getOrbeloFlow() const { return identity.orbeloFlow; }

void VestraProjectInfo::startNewProject() {
  boost::filesystem::create_directories(directoryOf(filePath, FILE_NAME_LENGTH));
  const std::string hostProjectId = owner->getOrbeloProjectId();
  identity.orbeloFlow = hostProjectId.empty() ? 0 : 1;
  identity.projectId = hostProjectId.empty() ? randomUuid() : hostProjectId;
}

bool VestraProjectInfo::load(std::fstream& file) {
  try {
    readProjectIdentity(file, identity);
  } catch (const std::logic_error&) {
    file.close();
    boost::filesystem::remove(filePath);
    return false;
  }
  const std::string hostProjectId = owner->getOrbeloProjectId();
  if (!hostProjectId.empty()) {
    identity.projectId = hostProjectId;
  }
  // What could not be read must not be overwritten by the attempt that follows.
  return !file.bad();
}

// The values first reach the file with the first attempt to send.
bool VestraProjectInfo::makeEmptyFile() const {
  std::ofstream file;
  openFile(file, filePath, std::ios_base::trunc);
  return file.is_open();
}

// The lines are made first: once the file is opened, what stood in it is gone.
void VestraProjectInfo::writeFile() const {
  const std::array<std::string, 5> lines = formatProjectIdentity(identity);
  FileSizeSignalHold hold;
  std::ofstream file;
  openFile(file, filePath, std::ios_base::trunc);
  for (const std::string& line : lines) {
    file << line << std::endl;
  }
}

std::int64_t& VestraProjectInfo::lastSendTime() {
  return owner->getProductType() == Vestra::KELVO_ALT ? identity.lastSendTimeType1
                                                      : identity.lastSendTimeDefault;
}

}  // namespace Oza
