#ifndef VESTRA_DESIGN_TOOL_FILES_PENDING_FILE_H
#define VESTRA_DESIGN_TOOL_FILES_PENDING_FILE_H

#include <string>
#include <string_view>

#include "design_tool/files/output_place.h"

namespace vestra::design_tool {

/// A file on its way: written under a hidden name beside its place and moved there at the end, so that no
/// reader sees half of it. Several files appear together or not at all: all are committed, then all are kept.
/// A file that is not kept in the end is taken back, and the file that it had replaced
/// stands there again.
class PendingFile {
 public:
  /// Writes the content under the hidden name.
  ///
  /// @param target must outlive this
  /// @throws DiagnosedError where that fails
  PendingFile(const OutputPlace& target, std::string_view content);
  PendingFile(const PendingFile&) = delete;
  PendingFile& operator=(const PendingFile&) = delete;
  ~PendingFile();

  /// Moves the file to its place, over the file that is there.
  /// @throws DiagnosedError where that fails
  void commit();

  /// Lets a committed file stand.
  void keep() { isKept = true; }

 private:
  bool moveWith(unsigned int flags) const;
  void takeBack() const;

  const OutputPlace& place;
  std::string hiddenName;
  bool isCommitted = false;
  bool hasReplaced = false;
  bool isKept = false;
};

}  // namespace vestra::design_tool

#endif
