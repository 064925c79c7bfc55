#include "interface/vestra_mgr.h"

#include <memory>

namespace Oza {
namespace {

// Trivially destructible: read by static destructors that run after the manager's.
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

}  // namespace Oza
