#include <cstdlib>

#include <boost/filesystem/operations.hpp>

#include "handler/command_line.h"
#include "handler/environment_switch.h"
#include "handler/support_library.h"
#include "handler/vestra_handler.h"
#include "identity/vestra_project_info.h"

namespace Oza {

bool VestraHandler::sendVestraData() {
  const bool due = projectInfo->recordSendAttempt();
  if (due) {
    execVestraData();
  }
  return due;
}

// execPath() comes first: if it throws, the previous log has not been deleted.
bool VestraHandler::execVestraData() {
  const std::string tool = support_library::execPath();
  const std::string line =
      commandLine(tool, pathInVestraDirectory(getVestraCommandTcl()), getVestraMsgFilter());
  const bool succeeded = std::system(line.c_str()) == 0;
  closeSupportLibrary();
  if (!isSwitchedOn("CALVIX_VESTRA_DEBUG_EXT")) {
    removeReportFiles();
  }
  return succeeded;
}

void VestraHandler::closeSupportLibrary() {
  if (supportLibrary != nullptr) {
    support_library::close(supportLibrary);
    supportLibrary = nullptr;
  }
}

void VestraHandler::removeReportFiles() const {
  boost::filesystem::remove(pathInVestraDirectory(getVestraCommandTcl()));
  boost::filesystem::remove(pathInVestraDirectory(getVestraWdm()));
}

}  // namespace Oza
