#include "loader/library_search.h"

#include <sys/stat.h>

#include <utility>

#include <fmt/format.h>
#include <boost/algorithm/string/replace.hpp>

namespace vestra::inspect {
namespace {

// Debian's order; where there is no multi-arch directory, the other distributions'.
std::string systemDirectories() {
  struct stat status {};
  return stat("/lib/x86_64-linux-gnu", &status) == 0
             ? "/lib/x86_64-linux-gnu:/usr/lib/x86_64-linux-gnu:/lib:/usr/lib"
             : "/lib64:/usr/lib64";
}

/// The directory itself comes last, after those for this processor.
std::vector<std::string> variantsOf(const std::string& directory) {
  std::vector<std::string> variants;
  for (int level = processorLevel(); level > 1; --level) {
    variants.push_back(fmt::format("{}/glibc-hwcaps/x86-64-v{}", directory, level));
  }
  variants.push_back(directory);
  return variants;
}

/// An empty element means the current directory.
std::vector<std::string> elementsOf(const SearchPath& path) {
  std::vector<std::string> elements;
  const char* separators = path.rule == "LD_LIBRARY_PATH" ? ":;" : ":";
  for (std::size_t begin = 0; begin <= path.directories.size();) {
    const std::size_t end =
        std::min(path.directories.find_first_of(separators, begin), path.directories.size());
    const std::string element = path.directories.substr(begin, end - begin);
    elements.push_back(element.empty() ? "." : element);
    begin = end + 1;
  }
  return elements;
}

void addPlaces(const SearchPath& path, const std::string& library, std::vector<Candidate>& places) {
  if (path.directories.empty()) {
    return;
  }
  for (const std::string& directory : elementsOf(path)) {
    for (const std::string& variant : variantsOf(directory)) {
      const ElfFile elf = readElfFile(variant + "/" + library);
      if (variant == directory || elf.state != ElfState::missing) {
        places.push_back({elf.path, path.rule, elf.state, elf.reason});
      }
    }
  }
}

}  // namespace

LibrarySearch::LibrarySearch(std::string path) : libraryPath(std::move(path)) {}

std::vector<Candidate> LibrarySearch::placesOf(const std::string& library,
                                               const std::vector<SearchPath>& before,
                                               const std::vector<SearchPath>& after) const {
  std::vector<Candidate> places;
  for (const SearchPath& path : before) {
    addPlaces(path, library, places);
  }
  addPlaces({"LD_LIBRARY_PATH", libraryPath}, library, places);
  for (const SearchPath& path : after) {
    addPlaces(path, library, places);
  }
  if (const auto cached = cache.find(library)) {
    const ElfFile elf = readElfFile(*cached);
    places.push_back({elf.path, "ld.so.cache", elf.state, elf.reason});
  }
  addPlaces({"system directory", systemDirectories()}, library, places);
  return places;
}

SearchResult LibrarySearch::find(const std::string& library, const std::vector<SearchPath>& before,
                                 const std::vector<SearchPath>& after) const {
  SearchResult result;
  bool ended = false;
  for (Candidate& place : placesOf(library, before, after)) {
    if (ended) {
      if (place.state != ElfState::missing) {
        result.notReached.push_back(std::move(place));
      }
      continue;
    }
    ended = place.state == ElfState::loadable || place.state == ElfState::broken;
    if (place.state == ElfState::loadable) {
      result.chosen = place.path;
    }
    result.tried.push_back(std::move(place));
  }
  return result;
}

std::map<std::string, std::string> LibrarySearch::needsOf(const ElfFile& file) const {
  std::map<std::string, std::string> found;
  std::vector<ElfFile> waiting = {file};
  while (!waiting.empty()) {
    const ElfFile current = waiting.back();
    waiting.pop_back();
    // A RUNPATH takes the RPATH's place, and counts for what its own file needs alone.
    const SearchPath rpath{"RPATH", current.runpath ? "" : current.rpath.value_or("")};
    const SearchPath programRpath{"RPATH", file.runpath ? "" : file.rpath.value_or("")};
    const SearchPath runpath{"RUNPATH", current.runpath.value_or("")};
    for (const std::string& library : current.needed) {
      if (found.count(library) != 0) {
        continue;
      }
      const std::string path = find(library, {rpath, programRpath}, {runpath}).chosen;
      found[library] = path;
      if (!path.empty()) {
        waiting.push_back(readElfFile(path));
      }
    }
  }
  return found;
}

}  // namespace vestra::inspect
