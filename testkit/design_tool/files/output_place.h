#ifndef VESTRA_DESIGN_TOOL_FILES_OUTPUT_PLACE_H
#define VESTRA_DESIGN_TOOL_FILES_OUTPUT_PLACE_H

#include <optional>
#include <string>
#include <utility>

#include <sys/types.h>

#include "design_tool/files/descriptor.h"

namespace vestra::design_tool {

/// A file for what it is, whatever path leads to it: the numbers of its device and of itself.
using FileIdentity = std::pair<dev_t, ino_t>;

/// The identity of the file that a path leads to; nothing where there is none.
std::optional<FileIdentity> identityOf(const std::string& path);

/// Where a report is to be written: a name in a directory that stays open, so that nobody can exchange the
/// directory afterwards.
class OutputPlace {
 public:
  /// @param target as the script names it
  /// @param root   the directory below which it must lie, whatever links lead there
  /// @throws DiagnosedError where it lies elsewhere, or where a file stands that is not regular
  OutputPlace(std::string target, const std::string& root);

  const std::string& path() const { return outputPath; }
  int directory() const { return parent.get(); }
  const std::string& name() const { return fileName; }

  /// Whether both are the same file, or would be.
  bool isSameAs(const OutputPlace& other) const;

  /// Whether it is the file that stands here.
  bool isSameAs(const std::optional<FileIdentity>& file) const { return standing && standing == file; }

 private:
  void refuseToLeave(const std::string& root) const;
  void lookAtWhatStandsHere();

  std::string outputPath;
  std::string fileName;
  Descriptor parent;
  std::optional<FileIdentity> standing;
};

}  // namespace vestra::design_tool

#endif
