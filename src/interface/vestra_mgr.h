#ifndef VESTRA_INTERFACE_VESTRA_MGR_H
#define VESTRA_INTERFACE_VESTRA_MGR_H

#include "handler/vestra_handler.h"
#include "identity/vestra_setting.h"

namespace Oza {

/// The one owner of the process's settings and report handler.
class VestraMgr {
 public:
  /// The manager, made at the first call and destroyed at exit or when the library
  /// is unloaded. Making it is safe against concurrent calls; it throws what the
  /// settings' or the handler's constructor throws, and the next call tries again.
  /// Not to be called once the manager is gone.
  static VestraMgr* getInstance();

  /// Whether the one manager has been destroyed: a host's static object that was made
  /// before it is destroyed after it.
  static bool isGone();

  /// Makes the settings, which read their file, then the handler.
  VestraMgr();
  VestraMgr(const VestraMgr&) = delete;
  VestraMgr& operator=(const VestraMgr&) = delete;
  /// Frees the settings, then the handler.
  ~VestraMgr();

  /// Owned by the manager.
  VestraSetting* getSetting() const;
  /// Owned by the manager.
  VestraHandler* getHandler() const;

 private:
  VestraSetting* setting;
  VestraHandler* handler;
};

}  // namespace Oza

#endif
