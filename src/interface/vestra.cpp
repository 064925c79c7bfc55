#include <vestra/vestra.h>

#include <utility>

#include "data/byte_string.h"
#include "interface/vestra_mgr.h"

namespace Oza {

const char* NEW_LINE = "\n";
const char* SPACE = " ";
const char* PARAM_CONTEXT = "-context";
const char* PARAM_VALUE = "-value";
const char* PARAM_KEY = "-key";
const char* PARAM_CLIENT = "-client";
const char* TYPE_ADD_DATA = "vestra_add_data";

// The value is copied before the key: if both are null, the value's exception is thrown.
void Vestra::add(const char* key, const char* value, SectionType section) {
  std::string valueText = byteString(value);
  std::string keyText = byteString(key);
  if (VestraMgr::isGone()) {
    return;
  }
  VestraMgr::getInstance()->getHandler()->addData(std::move(keyText), std::move(valueText), section);
}

bool Vestra::send(const char* projectDir, ProductType product) {
  std::string directory = byteString(projectDir);
  if (VestraMgr::isGone()) {
    return false;
  }
  VestraMgr::getInstance()->getHandler()->setProjectDirectory(std::move(directory));
  VestraMgr::getInstance()->getHandler()->setProductType(product);
  const std::string randomId = VestraMgr::getInstance()->getSetting()->getRandomId();
  add("random_id", randomId.c_str(), SOFTWARE_VERSION_AND_TARGET_DEVICE);
  return VestraMgr::getInstance()->getHandler()->prepareVestraData() &&
         VestraMgr::getInstance()->getHandler()->sendVestraData();
}

bool Vestra::internal() {
  return !VestraMgr::isGone() && VestraMgr::getInstance()->getHandler()->isInternal();
}

std::string Vestra::getLogFileName() {
  return VestraMgr::isGone() ? std::string() : VestraMgr::getInstance()->getHandler()->getLogFileName();
}

}  // namespace Oza
