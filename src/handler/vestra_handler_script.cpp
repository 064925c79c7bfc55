#include <fstream>

#include "data/crc32.h"
#include "files/file_size_signal.h"
#include "files/open_file.h"
#include "handler/support_library.h"
#include "handler/vestra_handler.h"
#include "identity/vestra_project_info.h"

namespace Oza {
namespace {

bool isFirstOfItsClient(unsigned int context) { return context % 2 == 0; }

void writeInitLine(std::ostream& script, const std::string& vestraDirectory) {
  script << "vestra_init -vestra_dir " << vestraDirectory << std::endl;
}

void writeRegistration(std::ostream& script, const std::string& client) {
  script << "vestra_register_client -client " << client << std::endl;
}

void writeTerminateLine(std::ostream& script) { script << "vestra_terminate" << std::endl; }

}  // namespace

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

std::uint32_t VestraHandler::getCrc32(const std::string& text) { return crc32(text.c_str()); }

bool VestraHandler::openSupportLibrary() {
  if (support_library::isOpen()) {
    return true;
  }
  supportLibrary = support_library::open();
  return supportLibrary != nullptr;
}

void VestraHandler::writeScript() {
  FileSizeSignalHold hold;
  std::ofstream script;
  openFile(script, pathInVestraDirectory(getVestraCommandTcl()), std::ios_base::trunc);
  writeInitLine(script, pathInVestraDirectory(""));
  const std::string checksumText = writeContexts(script);
  writeTransmitLine(script, checksumText);
  writeTerminateLine(script);
}

// Two neighbours that are both empty are skipped together, wherever the pair
// begins. So a client is registered only when the first of its contexts is
// visited, and a visited context may be empty.
std::string VestraHandler::writeContexts(std::ostream& script) {
  constexpr unsigned int lastContext = CONTEXT_COUNT - 1;
  std::string checksumText = getTimeStampSeg();
  for (unsigned int i = 0; i <= lastContext;) {
    if (i != lastContext && isParentEmpty(i) && isParentEmpty(i + 1)) {
      i += 2;
      continue;
    }
    VestraDataInterface* context = contexts[i];
    if (isFirstOfItsClient(i)) {
      writeRegistration(script, context->getClient());
      checksumText += context->getClient();
    }
    script << context->toTclString();
    checksumText += context->toCRCSegment();
    ++i;
  }
  return checksumText;
}

std::string VestraHandler::registrationText() {
  const std::string mark = isInternal() ? "VESTRA_TEST_" + getProductName() + "_" : "";
  return mark + getRegId();
}

void VestraHandler::writeTransmitLine(std::ostream& script, const std::string& checksumText) {
  const std::string registration = registrationText();
  script << "vestra_transmit -clientid " << getCrc32(checksumText);
  script << " -regid \"" << registration << "\"";
  script << " -xml " << pathInVestraDirectory(getVestraXml());
  script << " -html " << pathInVestraDirectory(getVestraHtml());
  script << " -wdm " << pathInVestraDirectory(getVestraWdm());
  script << " -intro \"<H3>" << getProductName() << " Usage Report</H3><BR>\"" << std::endl;
}

}  // namespace Oza
