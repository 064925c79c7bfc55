#include <cstdlib>

#include <boost/filesystem/operations.hpp>

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

bool VestraHandler::execVestraData() {
  const bool succeeded = std::system(commandLine().c_str()) == 0;
  closeSupportLibrary();
  if (!isSwitchedOn("CALVIX_VESTRA_DEBUG_EXT")) {
    removeReportFiles();
  }
  return succeeded;
}

// The tool is asked for first: without one, the previous log stays.
std::string VestraHandler::commandLine() const {
  std::string line = support_library::execPath();
  line += " -mode batch -source " + pathInVestraDirectory(getVestraCommandTcl()) + " -notrace ";
  line += getVestraMsgFilter();
  return line;
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
