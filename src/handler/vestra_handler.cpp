#include "handler/vestra_handler.h"

#include <utility>

#include <boost/filesystem/operations.hpp>

#include "data/contexts.h"
#include "handler/command_line.h"
#include "handler/product_profile.h"
#include "identity/vestra_project_info.h"

namespace Oza {

// Delegates, so that the destructor frees the contexts when creating one of them throws.
VestraHandler::VestraHandler() : VestraHandler(Vestra::KELVO) {
  contexts.reserve(CONTEXTS.size());
  for (const ContextProfile& context : CONTEXTS) {
    addData(new VestraParentData(context.path, context.client, context.userEnvStyle));
  }
}

VestraHandler::VestraHandler(Vestra::ProductType product)
    : projectInfo(nullptr), productType(product), supportLibrary(nullptr), site(Site::NOT_YET_DETERMINED) {}

VestraHandler::~VestraHandler() {
  delete projectInfo;
  for (VestraDataInterface* context : contexts) {
    delete context;
  }
}

void VestraHandler::setProjectDirectory(std::string directory) {
  projectDirectory = boost::filesystem::absolute(directory, boost::filesystem::current_path()).string();
}

bool VestraHandler::isKelvo() const { return isSimulator(productType); }

std::string VestraHandler::getProductName() const { return profile().name; }

std::string VestraHandler::getProductNameL() const { return profile().lowerCaseName; }

std::string VestraHandler::getVestraCommandTcl() const { return profile().script; }

std::string VestraHandler::getVestraWdm() const { return profile().rules; }

std::string VestraHandler::getVestraXml() const { return profile().xml; }

std::string VestraHandler::getVestraHtml() const { return profile().html; }

std::string VestraHandler::getLogFileName() const { return pathInVestraDirectory(LOG_FILE); }

std::string VestraHandler::getVestraMsgFilter() const {
  if (isKelvo()) {
    return {};
  }
  const std::string log = getLogFileName();
  boost::filesystem::remove(log);
  return redirectionTo(log);
}

const ProductProfile& VestraHandler::profile() const { return profileOf(productType); }

std::string VestraHandler::pathInVestraDirectory(const std::string& name) const {
  return vestraDirectoryOf(projectDirectory) + name;
}

}  // namespace Oza
