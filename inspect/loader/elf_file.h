#ifndef VESTRA_INSPECT_LOADER_ELF_FILE_H
#define VESTRA_INSPECT_LOADER_ELF_FILE_H

#include <optional>
#include <set>
#include <string>
#include <vector>

namespace vestra::inspect {

/// What the loader makes of a file that it is offered as a library.
enum class ElfState {
  loadable,
  /// Nothing there, or not readable: the loader goes on to the next place.
  missing,
  /// For another machine or word size: the loader goes on as well.
  wrongClass,
  /// No library at all: the loader stops here.
  broken,
};

/// What an ELF file says to the loader.
struct ElfFile {
  std::string path;
  ElfState state = ElfState::missing;
  /// Why it is not loadable, in the loader's words.
  std::string reason;
  /// Whether it names a loader: a program without one is static.
  bool hasInterpreter = false;
  std::vector<std::string> needed;
  /// DT_RPATH and DT_RUNPATH, `$ORIGIN` replaced.
  std::optional<std::string> rpath;
  std::optional<std::string> runpath;
};

/// Reads a program or a library for this machine.
ElfFile readElfFile(const std::string& path);

/// Those of `symbols` that the library does not define.
std::vector<std::string> symbolsMissingIn(const std::string& path, const std::vector<std::string>& symbols);

}  // namespace vestra::inspect

#endif
