#ifndef VESTRA_DESIGN_TOOL_PENDING_FILE_H
#define VESTRA_DESIGN_TOOL_PENDING_FILE_H

#include <string>
#include <string_view>

namespace vestra::design_tool {

/// A file on its way: written under a hidden name beside its place, and moved there at the end, so that no
/// reader sees half of it and a failure leaves what was there before.
class PendingFile {
 public:
  /// Writes the content under the hidden name.
  /// @throws DiagnosedError when that fails
  PendingFile(std::string target, std::string_view content);
  PendingFile(const PendingFile&) = delete;
  PendingFile& operator=(const PendingFile&) = delete;
  /// Takes the hidden file away unless it was committed.
  ~PendingFile();

  /// Moves the file to its place, over whatever file is there.
  /// @throws DiagnosedError when that fails
  void commit();

 private:
  std::string path;
  std::string hiddenPath;
  bool isCommitted = false;
};

}  // namespace vestra::design_tool

#endif
