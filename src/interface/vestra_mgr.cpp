#include "interface/vestra_mgr.h"

#include <memory>

namespace Oza {
namespace {

// Without a destructor, so that whoever is destroyed after the manager can ask.
bool theManagerIsGone = false;

struct TheManager {
  VestraMgr manager;
  ~TheManager() { theManagerIsGone = true; }
};

}  // namespace

VestraMgr* VestraMgr::getInstance() {
  static TheManager the;
  return &the.manager;
}

bool VestraMgr::isGone() { return theManagerIsGone; }

VestraMgr::VestraMgr() {
  auto madeFirst = std::make_unique<VestraSetting>();
  handler = new VestraHandler;
  setting = madeFirst.release();
}

VestraMgr::~VestraMgr() {
  delete setting;
  delete handler;
}

VestraSetting* VestraMgr::getSetting() const { return setting; }

VestraHandler* VestraMgr::getHandler() const { return handler; }

}  // namespace Oza
