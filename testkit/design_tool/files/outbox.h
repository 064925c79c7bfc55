#ifndef VESTRA_DESIGN_TOOL_OUTBOX_H
#define VESTRA_DESIGN_TOOL_OUTBOX_H

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace vestra::design_tool {

/// One file of a report that is kept.
struct KeptFile {
  std::string name;
  std::string content;
};

/// A report's folder in an outbox, hidden until it is published. It goes away unless that happens.
class PendingCopy {
 public:
  /// Takes the next number that nobody else has taken.
  ///
  /// @param outbox  an existing directory
  /// @param wanted  the name that stands after the number
  PendingCopy(std::filesystem::path outbox, std::string wanted);
  PendingCopy(const PendingCopy&) = delete;
  PendingCopy& operator=(const PendingCopy&) = delete;
  ~PendingCopy();

  /// Writes a file into the folder.
  /// @throws DiagnosedError where that fails
  void add(const KeptFile& file) const;

  /// Gives the folder its name, so that it appears all at once.
  /// @return the folder
  /// @throws DiagnosedError where that fails
  std::filesystem::path publish();

 private:
  std::filesystem::path folder() const;
  bool take();

  std::filesystem::path directory;
  std::string name;
  int number = 0;
  bool isPublished = false;
};

/// Where a copy of each report is kept: one folder for each, `NNNN-NAME`, counting up from 0001. Several
/// tools may use one outbox at once; each report gets a number of its own.
class Outbox {
 public:
  /// Makes the folder, with all that is missing above it, when there is none.
  /// @throws DiagnosedError when that fails
  explicit Outbox(std::filesystem::path place);

  /// Writes the files into a hidden folder.
  ///
  /// @param name  stands after the number; characters besides letters, digits, `-` and `_` are left out, and
  ///              "report" stands in where that leaves nothing
  /// @param files each has a name of its own
  /// @throws DiagnosedError where two files have one name or writing fails; no folder is left then
  std::unique_ptr<PendingCopy> prepare(const std::string& name, const std::vector<KeptFile>& files) const;

 private:
  std::filesystem::path directory;
};

}  // namespace vestra::design_tool

#endif
