#include "interface/vestra_mgr.h"

namespace Oza {

VestraMgr* VestraMgr::getInstance() {
  static VestraMgr manager;
  return &manager;
}

VestraMgr::VestraMgr() : setting(new VestraSetting), handler(new VestraHandler) {}

VestraMgr::~VestraMgr() {
  delete setting;
  delete handler;
}

VestraSetting* VestraMgr::getSetting() const { return setting; }

VestraHandler* VestraMgr::getHandler() const { return handler; }

}  // namespace Oza
