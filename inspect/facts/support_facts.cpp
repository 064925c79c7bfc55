#include "facts/support_facts.h"

#include <sys/stat.h>
#include <sys/statvfs.h>
#include <sys/xattr.h>

#include "handler/support_library.h"
#include "loader/mapped_file.h"

namespace vestra::inspect {
namespace {

constexpr const char* STAND_IN_MARK = "VESTRA_TESTKIT_";

std::string directoryOf(const std::string& path) {
  const std::size_t slash = path.find_last_of('/');
  return slash == std::string::npos ? "." : path.substr(0, slash);
}

bool isOpenToOthers(const std::string& path) {
  struct stat status {};
  return stat(path.c_str(), &status) == 0 && (status.st_mode & S_IWOTH) != 0 &&
         (status.st_mode & S_ISVTX) == 0;
}

bool forbidsPrograms(const std::string& path) {
  struct statvfs system {};
  return statvfs(path.c_str(), &system) == 0 && (system.f_flag & ST_NOEXEC) != 0;
}

/// The old tag counts for everything that a program opens; the new one takes its place
/// and counts for what the program itself needs.
std::string rpathOf(const ElfFile& file) { return file.runpath ? "" : file.rpath.value_or(""); }

/// What the library itself brings: it is the one that asks for the support library.
ElfFile libraryOf(const LibrarySearch& loader, const std::optional<ElfFile>& host) {
  constexpr const char* name = "libvestra.so.1";
  const std::vector<SearchPath> before = {{"RPATH", host ? rpathOf(*host) : ""}};
  const std::vector<SearchPath> after = {{"RUNPATH", host ? host->runpath.value_or("") : ""}};
  return readElfFile(loader.find(name, before, after).chosen);
}

SearchResult searchOf(const LibrarySearch& loader, const std::optional<ElfFile>& host) {
  const char* name = Oza::support_library::FILE_NAME;
  if (host) {
    const auto needs = loader.needsOf(*host);
    const auto loaded = needs.find(name);
    if (loaded != needs.end() && !loaded->second.empty()) {
      return {{{loaded->second, "loaded by the host already", ElfState::loadable, ""}}, {}, loaded->second};
    }
  }
  const ElfFile library = libraryOf(loader, host);
  const std::string hostRpath = host && !library.runpath ? rpathOf(*host) : "";
  return loader.find(name, {{"RPATH of libvestra", rpathOf(library)}, {"RPATH of the host", hostRpath}},
                     {{"RUNPATH of libvestra", library.runpath.value_or("")}});
}

void judge(const LibrarySearch& loader, SupportFacts& support) {
  const std::string& path = support.search.chosen;
  support.file = lookAt(path);
  for (const auto& [library, found] : loader.needsOf(readElfFile(path))) {
    if (found.empty()) {
      support.missingNeeds.push_back(library);
    }
  }
  support.missingEntryPoints =
      symbolsMissingIn(path, {Oza::support_library::EXEC_PATH_ENTRY, Oza::support_library::REGISTRATION_ENTRY,
                              Oza::support_library::ENVIRONMENT_ENTRY});
  support.mayNotRun = forbidsPrograms(path);
  support.isStandIn = MappedFile(path).bytes().find(STAND_IN_MARK) != std::string_view::npos;
}

void noteWritablePlaces(SupportFacts& support) {
  for (const Candidate& candidate : support.search.tried) {
    const std::string directory = directoryOf(candidate.path);
    if (directory == "." || isOpenToOthers(directory)) {
      support.writableByOthers.push_back(directory);
    }
    if (isOpenToOthers(candidate.path)) {
      support.writableByOthers.push_back(candidate.path);
    }
  }
}

}  // namespace

SupportFacts lookAtSupport(const View& view) {
  SupportFacts support;
  if (!view.host.empty()) {
    support.host = readElfFile(view.host);
    support.hostIsPrivileged = isPrivileged(view.host);
  }
  const LibrarySearch loader(support.hostIsPrivileged ? "" : view.variable("LD_LIBRARY_PATH"));
  support.search = searchOf(loader, support.host);
  if (!support.search.chosen.empty()) {
    judge(loader, support);
  }
  noteWritablePlaces(support);
  if (support.host && support.host->runpath) {
    const SearchPath runpath{"RUNPATH", *support.host->runpath};
    const std::string found = loader.find(Oza::support_library::FILE_NAME, {runpath}, {}).chosen;
    support.inRunpath = found == support.search.chosen ? "" : found;
  }
  return support;
}

bool isPrivileged(const std::string& program) {
  struct stat status {};
  return stat(program.c_str(), &status) == 0 &&
         ((status.st_mode & (S_ISUID | S_ISGID)) != 0 ||
          getxattr(program.c_str(), "security.capability", nullptr, 0) > 0);
}

}  // namespace vestra::inspect
