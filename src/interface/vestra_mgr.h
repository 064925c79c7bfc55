#ifndef VESTRA_INTERFACE_VESTRA_MGR_H
#define VESTRA_INTERFACE_VESTRA_MGR_H

#include "handler/vestra_handler.h"
#include "identity/vestra_setting.h"

namespace Oza {

/// The one owner of the process's settings and report handler.
class VestraMgr {
 public:
  /// The manager, a function-local static: created by the first call, thread-safely, and
  /// destroyed at exit or when the library is unloaded. Throws what the settings' or the
  /// handler's constructor throws; the next call tries again. Must not be called after the
  /// manager's destruction.
  static VestraMgr* getInstance();

  /// Whether the manager has been destroyed: a host's static objects that were constructed
  /// before it are destroyed after it.
  static bool isGone();

  /// Creates the settings, which read their file, then the handler.
  VestraMgr();
  VestraMgr(const VestraMgr&) = delete;
  VestraMgr& operator=(const VestraMgr&) = delete;
  /// Deletes the settings, then the handler.
  ~VestraMgr();

  // Both are owned by the manager.
  VestraSetting* getSetting() const { return setting; }
  VestraHandler* getHandler() const { return handler; }

 private:
  VestraSetting* setting;
  VestraHandler* handler;
};

}  // namespace Oza

#endif
