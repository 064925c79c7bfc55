#include <fstream>

#include "data/crc32.h"
#include "files/file_size_signal.h"
#include "files/open_file.h"
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

void VestraHandler::createSimWdm() {
  const std::string rules = rulesFileText(productType);
  FileSizeSignalHold hold;
  std::ofstream out;
  openFile(out, pathInVestraDirectory(getVestraWdm()), std::ios_base::trunc);
  out << rules;
}

std::uint32_t VestraHandler::getCrc32(const std::string& text) { return crc32(text.c_str()); }

bool VestraHandler::openSupportLibrary() {
  if (support_library::isOpen()) {
    return true;
  }
  supportLibrary = support_library::open();
  return supportLibrary != nullptr;
}

// Where the support library names no registration, the script keeps what stands before.
void VestraHandler::writeScript() {
  const std::string vestraDirectory = vestraDirectoryOf(projectDirectory);
  FileSizeSignalHold hold;
  std::ofstream script;
  openFile(script, pathInVestraDirectory(getVestraCommandTcl()), std::ios_base::trunc);
  script << initLine(vestraDirectory) << std::flush;
  CollectedText collected{"", getTimeStampSeg()};
  appendContexts(contexts, collected);
  script << collected.lines << std::flush;
  const bool internalSite = isInternal();
  const std::string registration = registrationText(internalSite, productType, getRegId());
  script << transmitLines(getCrc32(collected.checksumText), registration, vestraDirectory, productType);
}

}  // namespace Oza
