#ifndef VESTRA_FILES_NEIGHBOUR_H
#define VESTRA_FILES_NEIGHBOUR_H

#include <string>

#include "files/descriptor.h"

namespace Oza {

/// A new file beside another one, under a name of its own, which takes the other's name
/// once it is complete. It is locked while it is written, so that one which a killed
/// process left behind can be told from one in the making.
class Neighbour {
 public:
  /// Removes what killed processes left in the directory, and makes the new file.
  /// @param path  The file whose neighbour it is. Outlives the neighbour.
  explicit Neighbour(const std::string& path);
  Neighbour(const Neighbour&) = delete;
  Neighbour& operator=(const Neighbour&) = delete;
  /// Removes the file unless it was renamed.
  ~Neighbour();

  /// Not open where none can be made.
  const Descriptor& file() const { return descriptor; }

  /// Gives it the other's name.
  /// @return False, with the reason in errno, when that fails.
  bool rename();

 private:
  const std::string& target;
  bool locks;
  std::string name;
  Descriptor descriptor;
  bool hasOwnName;
};

}  // namespace Oza

#endif
