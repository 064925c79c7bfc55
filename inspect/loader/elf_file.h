#ifndef VESTRA_INSPECT_LOADER_ELF_FILE_H
#define VESTRA_INSPECT_LOADER_ELF_FILE_H

#include <optional>
#include <set>
#include <string>
#include <vector>

namespace vestra::inspect {

/// What a program or library for this machine says of itself.
struct ElfFile {
  /// The loader that it names; empty for a static program and for most libraries.
  std::string interpreter;
  std::string soname;
  std::vector<std::string> needed;
  /// Those of the symbols asked for that it defines for others.
  std::set<std::string> defined;
  /// Whether it has the sections that all but the first are read from.
  bool hasSections = false;
};

/// Reads an ELF file with pread, so that one that is truncated meanwhile does no harm.
/// @return Nothing for what is no 64-bit x86-64 ELF file, or cannot be read.
std::optional<ElfFile> readElfFile(const std::string& path, const std::vector<std::string>& symbols = {});

}  // namespace vestra::inspect

#endif
