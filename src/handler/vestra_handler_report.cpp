#include "data/crc32.h"
#include "files/replace_file.h"
#include "handler/product_profile.h"
#include "handler/report_script.h"
#include "handler/rules_file.h"
#include "handler/support_library.h"
#include "handler/vestra_handler.h"
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

// Hosts that write the same rules at one moment leave the file alone.
void VestraHandler::createSimWdm() {
  const std::string rules = rulesFileText(productType);
  const std::string path = pathInVestraDirectory(getVestraWdm());
  if (!fileHolds(path, rules)) {
    replaceFile(path, rules);
  }
}

std::uint32_t VestraHandler::getCrc32(const std::string& text) { return crc32(text.c_str()); }

bool VestraHandler::openSupportLibrary() {
  if (support_library::isOpen()) {
    return true;
  }
  supportLibrary = support_library::open();
  return supportLibrary != nullptr;
}

// The text is complete before its file is touched. Where it cannot be completed, because
// the support library names no registration, the file gets what there is of it.
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
