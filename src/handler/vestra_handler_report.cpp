#include <ctime>
#include <utility>

#include "data/crc32.h"
#include "files/replace_file.h"
#include "handler/product_profile.h"
#include "handler/report_script.h"
#include "handler/rules_file.h"
#include "handler/support_library.h"
#include "handler/time_stamp.h"
#include "handler/vestra_handler.h"
#include "identity/environment_pairs.h"
#include "identity/vestra_project_info.h"

namespace Oza {

bool VestraHandler::prepareVestraData() {
  if (!setupVestraInfo()) {
    return false;
  }
  createSimWdm();
  if (!openSupportLibrary()) {
    return false;
  }
  if (projectInfo->getOrbeloFlow() != 0) {
    addData("tool_flow", "kelvo_orbelo", Vestra::SOFTWARE_VERSION_AND_TARGET_DEVICE);
  }
  addUserEnvironmentData();
  writeScript();
  return true;
}

bool VestraHandler::setupVestraInfo() {
  auto* record = new VestraProjectInfo(pathInVestraDirectory(PROJECT_IDENTITY_FILE), this);
  delete projectInfo;
  projectInfo = record;
  return projectInfo->loadOrCreate();
}

void VestraHandler::addUserEnvironmentData() {
  const std::string product = getProductName();
  const std::string text = support_library::environmentData(isKelvo() ? product.c_str() : nullptr);
  for (EnvironmentPair& pair : environmentPairs(text)) {
    addData(std::move(pair.key), std::move(pair.value), pair.section);
  }
  // c_str(): what follows a NUL byte in a corrupt identity file is not reported.
  addData("project_id", projectInfo->getProjectId().c_str(),  // NOLINT(readability-redundant-string-cstr)
          Vestra::SOFTWARE_VERSION_AND_TARGET_DEVICE);
  addData("project_iteration", std::to_string(projectInfo->getIteration()),
          Vestra::SOFTWARE_VERSION_AND_TARGET_DEVICE);
  uniqueAndReorderData();
}

// Skips the write when the file already holds this text, so that hosts which report at the
// same time do not replace each other's rules.
void VestraHandler::createSimWdm() {
  const std::string rules = rulesFileText(productType);
  const std::string path = pathInVestraDirectory(getVestraWdm());
  if (!fileHolds(path, rules)) {
    replaceFile(path, rules);
  }
}

std::string VestraHandler::getTimeStampSeg() { return timeStamp(std::time(nullptr)); }

std::string VestraHandler::getRegId() { return support_library::registrationId(); }

std::uint32_t VestraHandler::getCrc32(const std::string& text) { return crc32(text.c_str()); }

bool VestraHandler::openSupportLibrary() {
  if (support_library::isOpen()) {
    return true;
  }
  supportLibrary = support_library::open();
  return supportLibrary != nullptr;
}

// The script is written once, when its text is complete. If composing it throws, as when the
// support library has no registration identifier, the lines so far are written.
void VestraHandler::writeScript() {
  const std::string path = pathInVestraDirectory(getVestraCommandTcl());
  CollectedText text{initLine(vestraDirectoryOf(projectDirectory)), {}};
  text.checksum.append(getTimeStampSeg());
  try {
    composeScript(text);
  } catch (...) {
    replaceFile(path, text.lines);
    throw;
  }
  replaceFile(path, text.lines);
}

void VestraHandler::composeScript(CollectedText& text) {
  appendContexts(contexts, text);
  const bool internalSite = isInternal();
  const std::string registration = registrationText(internalSite, productType, getRegId());
  text.lines +=
      transmitLines(text.checksum.value(), registration, vestraDirectoryOf(projectDirectory), productType);
}

}  // namespace Oza
