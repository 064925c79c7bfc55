#ifndef VESTRA_DESIGN_TOOL_FILES_OUTBOX_H
#define VESTRA_DESIGN_TOOL_FILES_OUTBOX_H

#include <filesystem>
#include <map>
#include <string>

namespace vestra::design_tool {

/// Where a copy of each report is kept: one folder for each, `NNNN-NAME`, counting up from 0001. Several
/// tools may use one outbox at once; each report gets a number of its own.
class Outbox {
 public:
  /// Creates the folder, with all that is missing above it.
  /// @throws DiagnosedError
  explicit Outbox(std::filesystem::path place);

  /// Writes the files into a hidden folder and renames it when it is complete.
  ///
  /// @param name  follows the number; characters besides letters, digits, `-` and `_` are left out, and
  ///              "report" stands in where that leaves nothing
  /// @param files contents by file name
  /// @return      the folder
  /// @throws DiagnosedError; no folder is left then
  std::filesystem::path keep(const std::string& name, const std::map<std::string, std::string>& files) const;

 private:
  std::filesystem::path directory;
};

}  // namespace vestra::design_tool

#endif
