#include "identity/vestra_project_info.h"

#include <ctime>
#include <fstream>
#include <stdexcept>
#include <utility>

#include <boost/filesystem/operations.hpp>

#include "files/file_size_signal.h"
#include "files/open_file.h"
#include "files/path_text.h"
#include "handler/vestra_handler.h"
#include "identity/random_uuid.h"

namespace Oza {

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
  const bool due = countAttempt(identity, owner->getProductType(), std::time(nullptr));
  writeFile();
  return due;
}

const std::string& VestraProjectInfo::getProjectId() const { return identity.projectId; }

std::uint64_t VestraProjectInfo::getIteration() const { return identity.iteration; }

std::int32_t VestraProjectInfo::getOrbeloFlow() const { return identity.orbeloFlow; }

void VestraProjectInfo::startNewProject() {
  boost::filesystem::create_directories(directoryOf(filePath, PROJECT_IDENTITY_FILE_LENGTH));
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

// The text is made first: once the file is opened, what stood in it is gone.
void VestraProjectInfo::writeFile() const {
  const std::string text = formatProjectIdentity(identity);
  FileSizeSignalHold hold;
  std::ofstream file;
  openFile(file, filePath, std::ios_base::trunc);
  file << text;
}

}  // namespace Oza
