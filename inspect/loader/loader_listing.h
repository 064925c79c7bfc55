#ifndef VESTRA_INSPECT_LOADER_LOADER_LISTING_H
#define VESTRA_INSPECT_LOADER_LOADER_LISTING_H

#include <string>
#include <vector>

#include "facts/host_context.h"

namespace vestra::inspect {

/// The system's loader, which lists what it would load.
inline constexpr char LOADER[] = "/lib64/ld-linux-x86-64.so.2";

/// One object of the loader's listing.
struct ListedObject {
  /// As another object needs it; its path where it was preloaded.
  std::string name;
  std::string path;
};

/// What the loader said.
struct LoaderListing {
  std::vector<ListedObject> objects;
  /// The files that it tried for one library, in its order.
  std::vector<std::string> tried;
  /// Its error message; empty without one. `object` is what the message is about.
  std::string error;
  std::string object;
  /// The signal that ended it, SIGALRM at the timeout; 0 when none did.
  int signal = 0;
};

/// Where this program's own libraries are installed.
std::string libraryDirectory();

/// Asks the loader what it would load for a program in the host's environment, with an object preloaded.
/// It maps the libraries and runs no code of them; it is ended after a second.
///
/// @param preloaded  A path without blanks and colons; empty for none.
/// @param library    The library whose search is noted.
LoaderListing listObjects(const HostContext& context, const std::string& program,
                          const std::string& preloaded, const std::string& library);

}  // namespace vestra::inspect

#endif
