#ifndef VESTRA_INSPECT_REHEARSE_PRIVATE_PLACE_H
#define VESTRA_INSPECT_REHEARSE_PRIVATE_PLACE_H

#include <string>

namespace vestra::inspect {

/// The place of one rehearsed report: a folder that is numbered in the rehearsal's
/// directory. A copy of the project's identity file lies in it, and what is kept of
/// the report.
class PrivatePlace {
 public:
  PrivatePlace(const std::string& rehearsal, const std::string& realProject);

  /// The project in whose stead the report is written.
  const std::string& project() const { return projectDirectory; }
  /// Copies script and rules file to the folder, with the real project's paths in them.
  void keepFiles() const;
  /// Writes a fact for the inspector.
  void note(const std::string& name, const std::string& text) const;
  std::string withRealPaths(std::string text) const;

 private:
  std::string folder;
  std::string projectDirectory;
  std::string realDirectory;
};

/// The directory as the library makes it absolute; empty when that cannot be told.
std::string absolutePath(const std::string& directory);

/// A home with a copy of the user's settings file in it, made in the rehearsal's directory.
std::string privateHome(const std::string& rehearsal, const std::string& home);

/// Makes the next numbered folder.
std::string nextFolder(const std::string& rehearsal);

}  // namespace vestra::inspect

#endif
