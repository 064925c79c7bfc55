#include "handler/vestra_handler.h"

#include <utility>

#include <boost/filesystem/operations.hpp>

#include "identity/vestra_project_info.h"

namespace Oza {

// The two contexts of a client stand side by side: the script writer counts on it.
// The delegation makes the destructor free them when one of them cannot be made.
VestraHandler::VestraHandler() : VestraHandler(Vestra::KELVO) {
  contexts.reserve(CONTEXT_COUNT);
  addData(new VestraParentData("software_version_and_target_device", "project", true));
  addData(new VestraParentData("user_environment", "project", true));
  addData(new VestraParentData("kelvo\\\\command_line_options", "kelvo", false));
  addData(new VestraParentData("kelvo\\\\usage", "kelvo", false));
  addData(new VestraParentData("tavlo\\\\command_line_options", "tavlo", false));
  addData(new VestraParentData("tavlo\\\\usage", "tavlo", false));
}

VestraHandler::VestraHandler(Vestra::ProductType product)
    : projectInfo(nullptr),
      productType(product),
      supportLibrary(nullptr),
      internalSite(SITE_NOT_YET_DETERMINED) {}

VestraHandler::~VestraHandler() {
  delete projectInfo;
  for (VestraDataInterface* context : contexts) {
    delete context;
  }
}

void VestraHandler::setProjectDirectory(std::string directory) {
  projectDirectory = boost::filesystem::absolute(directory, boost::filesystem::current_path()).string();
}

void VestraHandler::setProductType(Vestra::ProductType product) { productType = product; }

Vestra::ProductType VestraHandler::getProductType() { return productType; }

bool VestraHandler::isKelvo() const { return productType <= Vestra::KELVO_ALT; }

std::string VestraHandler::getProductName() const { return isKelvo() ? "KELVO" : "TAVLO"; }

std::string VestraHandler::getProductNameL() const { return isKelvo() ? "kelvo" : "tavlo"; }

std::string VestraHandler::getVestraCommandTcl() const { return getProductNameL() + "_vestra.tcl"; }

std::string VestraHandler::getVestraWdm() const {
  return "usage_statistics_ext_" + getProductNameL() + ".wdm";
}

std::string VestraHandler::getVestraXml() const {
  return "usage_statistics_ext_" + getProductNameL() + ".xml";
}

std::string VestraHandler::getVestraHtml() const {
  return "usage_statistics_ext_" + getProductNameL() + ".html";
}

std::string VestraHandler::getLogFileName() const { return pathInVestraDirectory("tavlo_vestra.log"); }

std::string VestraHandler::getVestraMsgFilter() const {
  if (isKelvo()) {
    return {};
  }
  const std::string log = getLogFileName();
  boost::filesystem::remove(log);
  return " > " + log + " 2>&1";
}

std::string VestraHandler::pathInVestraDirectory(const std::string& name) const {
  return projectDirectory + "/vestra/" + name;
}

}  // namespace Oza
