#include "identity/vestra_project_info.h"

#include <fcntl.h>

#include <cerrno>
#include <ctime>
#include <utility>

#include <boost/filesystem/operations.hpp>

#include "files/file_lock.h"
#include "files/overwrite.h"
#include "files/path_text.h"
#include "files/sigxfsz_guard.h"
#include "handler/vestra_handler.h"
#include "identity/identity_file.h"
#include "identity/random_uuid.h"

namespace Oza {

VestraProjectInfo::VestraProjectInfo(std::string path, VestraHandler* handler)
    : filePath(std::move(path)), owner(handler) {}

// A path for which stat(2) fails counts as absent too; creating the file shows whether it can
// be used.
bool VestraProjectInfo::loadOrCreate() {
  try {
    const Descriptor file(filePath, O_RDWR, timeBudget);
    if (file.isRegular()) {
      return load(file);
    }
    boost::system::error_code error;
    if (!file.isOpen() && !boost::filesystem::exists(filePath, error)) {
      startNewProject();
      // The new record is first written by recordSendAttempt().
      return Descriptor(filePath, O_RDWR | O_CREAT | O_EXCL).isOpen() || loadOthers();
    }
    return loadOthers();
  } catch (...) {
    return false;
  }
}

bool VestraProjectInfo::recordSendAttempt() {
  const Descriptor file(filePath, O_RDWR | O_CREAT, timeBudget);
  return file.error() == EACCES ? countIn(Descriptor(filePath, O_WRONLY, timeBudget)) : countIn(file);
}

void VestraProjectInfo::startNewProject() {
  boost::filesystem::create_directories(directoryOf(filePath, sizeof PROJECT_IDENTITY_FILE - 1));
  if (takeHostsIdentifier()) {
    identity.orbeloFlow = 1;
  } else {
    identity.projectId = randomUuid();
  }
}

// Called when another host has created the file in between, the path is a dangling link, or
// opening has failed.
bool VestraProjectInfo::loadOthers() {
  const Descriptor file(filePath, O_RDWR, timeBudget);
  if (file.isRegular()) {
    return load(file);
  }
  switch (file.error()) {
    case EACCES:
      return emptyUnreadableFile();
    case ENOENT:
      return Descriptor(filePath, O_WRONLY | O_CREAT).isOpen();
    default:
      return file.canHoldText();
  }
}

// False after a read error: recordSendAttempt() must not overwrite what could not be read.
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

// O_RDWR fails with EACCES for a read-only file too.
bool VestraProjectInfo::emptyUnreadableFile() const {
  return Descriptor(filePath, O_RDONLY).error() == EACCES &&
         Descriptor(filePath, O_WRONLY | O_TRUNC).canHoldText();
}

// Reads the file again: another host may have counted since loadOrCreate(). Closing the file
// releases the lock.
bool VestraProjectInfo::countIn(const Descriptor& file) {
  SigxfszGuard guard;
  lockFile(file, LockKind::EXCLUSIVE, timeBudget);
  const std::optional<std::string> stored = identityTextToOverwrite(file);
  ProjectIdentity next = stored ? mergedWithStored(identity, *stored, identifierIsHosts) : identity;
  const bool due = countAttempt(next, owner->getProductType(), std::time(nullptr));
  if (stored && overwrite(file, *stored, formatProjectIdentity(next))) {
    guard.endWithoutSignal();
  }
  identity = std::move(next);
  return due;
}

}  // namespace Oza
