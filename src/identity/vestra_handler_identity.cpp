#include <boost/algorithm/string/case_conv.hpp>

#include "data/fields.h"
#include "handler/support_library.h"
#include "handler/vestra_handler.h"
#include "identity/vestra_project_info.h"

namespace Oza {
namespace {

// The first six pairs of the environment text describe the user's environment,
// whatever follows describes the project.
constexpr std::size_t USER_ENVIRONMENT_FIELDS = 12;

}  // namespace

bool VestraHandler::setupVestraInfo() {
  auto* record = new VestraProjectInfo(pathInVestraDirectory(".kelvo_vestrra.info"), this);
  delete projectInfo;
  projectInfo = record;
  return projectInfo->loadOrCreate();
}

std::string VestraHandler::getOrbeloProjectId() const {
  for (VestraDataInterface* child : contextAt(Vestra::SOFTWARE_VERSION_AND_TARGET_DEVICE)->children) {
    auto* item = static_cast<VestraAddData*>(child);
    boost::algorithm::to_lower(item->key);
    if (item->key == "project_id") {
      return item->value;
    }
  }
  return {};
}

void VestraHandler::addUserEnvironmentData() {
  const std::string product = getProductName();
  addEnvironmentPairs(support_library::environmentData(isKelvo() ? product.c_str() : nullptr));
  // As a C string: what follows a null byte in a damaged file is not reported.
  addData("project_id", projectInfo->getProjectId().c_str(),  // NOLINT(readability-redundant-string-cstr)
          Vestra::SOFTWARE_VERSION_AND_TARGET_DEVICE);
  addData("project_iteration", std::to_string(projectInfo->getIteration()),
          Vestra::SOFTWARE_VERSION_AND_TARGET_DEVICE);
  uniqueAndReorderData();
}

// A key at the text's end whose value is missing is left out.
void VestraHandler::addEnvironmentPairs(const std::string& environment) {
  const std::vector<std::string> fields = fieldsOf(environment, '#');
  for (std::size_t i = 0; i + 1 < fields.size(); i += 2) {
    addData(
        fields[i], fields[i + 1],
        i < USER_ENVIRONMENT_FIELDS ? Vestra::USER_ENVIRONMENT : Vestra::SOFTWARE_VERSION_AND_TARGET_DEVICE);
  }
}

}  // namespace Oza
