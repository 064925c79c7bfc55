#include <utility>

#include "handler/support_library.h"
#include "handler/vestra_handler.h"
#include "identity/environment_pairs.h"
#include "identity/vestra_project_info.h"

namespace Oza {

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
  // As a C string: what follows a null byte in a damaged file is not reported.
  addData("project_id", projectInfo->getProjectId().c_str(),  // NOLINT(readability-redundant-string-cstr)
          Vestra::SOFTWARE_VERSION_AND_TARGET_DEVICE);
  addData("project_iteration", std::to_string(projectInfo->getIteration()),
          Vestra::SOFTWARE_VERSION_AND_TARGET_DEVICE);
  uniqueAndReorderData();
}

}  // namespace Oza
