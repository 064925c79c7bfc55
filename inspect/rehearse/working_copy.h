#ifndef VESTRA_INSPECT_REHEARSE_WORKING_COPY_H
#define VESTRA_INSPECT_REHEARSE_WORKING_COPY_H

#include <map>
#include <string>

namespace vestra::inspect {

/// A copy of what the library finds of a project, in which one report is written, and the folder
/// for what is kept of it.
class WorkingCopy {
 public:
  /// @param folder  made by nextFolder
  WorkingCopy(const std::string& folder, const std::string& realProject);

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
  /// Fingerprints by name.
  std::map<std::string, std::string> earlierScripts;
};

/// The directory as the library makes it absolute; empty when that cannot be told.
std::string absolutePath(const std::string& directory);

/// A home with a copy of the user's settings file in it, made in the record's directory.
std::string copyOfHome(const std::string& record, const std::string& home);

/// Makes the next numbered folder; empty when that cannot be done.
std::string nextFolder(const std::string& record);

/// Keeps the report that a command line hands over to the main design tool where nothing has
/// intercepted it.
///
/// @param script  path of the report script
void keepLeak(const std::string& record, const std::string& script);

}  // namespace vestra::inspect

#endif
