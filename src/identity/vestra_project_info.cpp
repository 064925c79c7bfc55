#include "identity/vestra_project_info.h"

#include <fcntl.h>

#include <ctime>
#include <utility>

#include <boost/filesystem/operations.hpp>

#include "files/file_lock.h"
#include "files/file_size_signal.h"
#include "files/open_file.h"
#include "files/overwrite.h"
#include "files/path_text.h"
#include "handler/vestra_handler.h"
#include "identity/identity_file.h"
#include "identity/random_uuid.h"

namespace Oza {
namespace {

// A file that may be written and not read, or whose directory is gone.
bool overwriteUnread(const std::string& path, const std::string& text) {
  const Descriptor file(path, O_WRONLY | O_CREAT);
  return file.isOpen() && overwrite(file, std::nullopt, text);
}

}  // namespace

VestraProjectInfo::VestraProjectInfo(std::string path, VestraHandler* handler)
    : filePath(std::move(path)), owner(handler) {}

// A path that cannot be examined counts as absent too; making the file there
// tells whether it can be used.
bool VestraProjectInfo::loadOrCreate() {
  try {
    const Descriptor file(filePath, O_RDWR);
    if (file.isOpen() && !file.hasStatus()) {
      return false;
    }
    if (file.isRegular()) {
      return load(file);
    }
    if (!boost::filesystem::exists(statusOf(filePath))) {
      startNewProject();
      return makeFile() || loadOthers();
    }
    return loadOthers();
  } catch (...) {
    return false;
  }
}

// The file is read anew: another host may have counted since this one has read it.
bool VestraProjectInfo::recordSendAttempt() {
  FileSizeSignalHold hold;
  const Descriptor file(filePath, O_RDWR | O_CREAT);
  const FileLock lock(file, FileLock::EXCLUSIVE, timeBudget);
  const std::optional<std::string> found = file.read();
  ProjectIdentity next = found ? broughtUpToDate(identity, *found, identifierIsHosts) : identity;
  const bool due = countAttempt(next, owner->getProductType(), std::time(nullptr));
  const std::string text = formatProjectIdentity(next);
  if (file.isOpen() ? overwrite(file, found, text) : overwriteUnread(filePath, text)) {
    hold.endWithoutSignal();
  }
  identity = std::move(next);
  return due;
}

const std::string& VestraProjectInfo::getProjectId() const { return identity.projectId; }

std::uint64_t VestraProjectInfo::getIteration() const { return identity.iteration; }

std::int32_t VestraProjectInfo::getOrbeloFlow() const { return identity.orbeloFlow; }

void VestraProjectInfo::startNewProject() {
  boost::filesystem::create_directories(directoryOf(filePath, PROJECT_IDENTITY_FILE_LENGTH));
  if (takeHostsIdentifier()) {
    identity.orbeloFlow = 1;
  } else {
    identity.projectId = randomUuid();
  }
}

// The values first reach the file with the first attempt to send.
bool VestraProjectInfo::makeFile() const { return Descriptor(filePath, O_RDWR | O_CREAT | O_EXCL).isOpen(); }

// Another host has made the file in between, or a link leads to nowhere.
bool VestraProjectInfo::loadOthers() {
  const Descriptor file(filePath, O_RDWR);
  return file.isRegular() ? load(file) : makeEmptyFile();
}

// What could not be read must not be overwritten by the attempt that follows.
bool VestraProjectInfo::load(const Descriptor& file) {
  std::optional<std::string> text = readIdentityText(file, timeBudget);
  if (text && text->empty() && owner->getOrbeloProjectId().empty()) {
    text = awaitIdentityText(file, timeBudget);
  }
  if (text && !parseProjectIdentity(*text, identity)) {
    text = rereadIdentityText(file, *text, timeBudget);
    if (text && !parseProjectIdentity(*text, identity)) {
      boost::filesystem::remove(filePath);
      return false;
    }
  }
  takeHostsIdentifier();
  return text.has_value();
}

bool VestraProjectInfo::takeHostsIdentifier() {
  const std::string hostsIdentifier = owner->getOrbeloProjectId();
  identifierIsHosts = !hostsIdentifier.empty();
  if (identifierIsHosts) {
    identity.projectId = hostsIdentifier;
  }
  return identifierIsHosts;
}

bool VestraProjectInfo::makeEmptyFile() const {
  const boost::filesystem::file_status status = statusOf(filePath);
  const int emptying = boost::filesystem::exists(status) ? O_TRUNC : 0;
  return opensWithoutBlocking(status, std::ios_base::out) &&
         Descriptor(filePath, O_WRONLY | O_CREAT | emptying).isOpen();
}

}  // namespace Oza
