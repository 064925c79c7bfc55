#ifndef VESTRA_DESIGN_TOOL_OUTBOX_H
#define VESTRA_DESIGN_TOOL_OUTBOX_H

#include <filesystem>
#include <string>
#include <vector>

namespace vestra::design_tool {

/// One file of a report that is kept.
struct KeptFile {
  std::string name;
  std::string content;
};

/// Where a copy of each report is kept: one folder for each, `NNNN-NAME`, counting up from 0001. Several
/// tools may use one outbox at once; each report gets a number of its own.
class Outbox {
 public:
  /// Makes the folder, with all that is missing above it, when there is none.
  /// @throws DiagnosedError when that fails
  explicit Outbox(std::filesystem::path place);

  /// Writes the files into a folder that appears all at once.
  ///
  /// @param name  stands after the number; characters besides letters, digits, `-` and `_` are left out, and
  ///              "report" stands in where that leaves nothing
  /// @param files each has a name of its own
  /// @return      the folder
  /// @throws DiagnosedError where two files have one name or writing fails; no folder appears then
  std::filesystem::path keep(const std::string& name, const std::vector<KeptFile>& files) const;

 private:
  std::filesystem::path directory;
};

}  // namespace vestra::design_tool

#endif
