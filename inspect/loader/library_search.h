#ifndef VESTRA_INSPECT_LOADER_LIBRARY_SEARCH_H
#define VESTRA_INSPECT_LOADER_LIBRARY_SEARCH_H

#include <map>
#include <string>
#include <vector>

#include "loader/elf_file.h"
#include "loader/ld_so_cache.h"

namespace vestra::inspect {

/// A place where the loader looks for a library, and what stands there.
struct Candidate {
  std::string path;
  /// "LD_LIBRARY_PATH", "RPATH of HOST", "ld.so.cache", ...
  std::string rule;
  ElfState state;
  std::string reason;
};

/// One search of the loader: the places in its order, up to the one that ends it.
struct SearchResult {
  std::vector<Candidate> tried;
  /// Places behind the end that hold a library of that name too.
  std::vector<Candidate> notReached;
  /// The library; empty when there is none, or a broken one stands in its way.
  std::string chosen;
};

/// A list of directories and the rule by which they are looked through.
struct SearchPath {
  std::string rule;
  std::string directories;
};

/// The loader's search for one name, read from the files: nothing is loaded.
class LibrarySearch {
 public:
  /// @param libraryPath  What the rule LD_LIBRARY_PATH looks through; empty for none.
  explicit LibrarySearch(std::string libraryPath);

  /// @param before  Looked through before LD_LIBRARY_PATH: an RPATH.
  /// @param after   Looked through after it: a RUNPATH.
  SearchResult find(const std::string& library, const std::vector<SearchPath>& before,
                    const std::vector<SearchPath>& after) const;

  /// All that a program or library needs, and what that needs: names with the files
  /// found for them, an empty text for a file that is missing.
  std::map<std::string, std::string> needsOf(const ElfFile& file) const;

 private:
  std::vector<Candidate> placesOf(const std::string& library, const std::vector<SearchPath>& before,
                                  const std::vector<SearchPath>& after) const;

  std::string libraryPath;
  LdSoCache cache;
};

}  // namespace vestra::inspect

#endif
