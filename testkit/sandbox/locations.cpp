#include <dlfcn.h>

#include <climits>
#include <cstdlib>

#include <boost/filesystem/operations.hpp>

#include <vestra/testkit/sandbox.h>

namespace vestra::testkit {
namespace {

char pathOfThisLibrary[PATH_MAX];

/// At the program's start: a path from LD_LIBRARY_PATH may be relative, and tests change the directory.
[[gnu::constructor]] void findThisLibrary() {
  Dl_info info{};
  dladdr(reinterpret_cast<const void*>(&findThisLibrary), &info);
  if (realpath(info.dli_fname, pathOfThisLibrary) == nullptr) {
    *pathOfThisLibrary = '\0';
  }
}

std::string fromHere(const char* relativePath) {
  const auto directory = boost::filesystem::path(pathOfThisLibrary).parent_path();
  return boost::filesystem::canonical(directory / relativePath).string();
}

}  // namespace

std::string supportLibraryPath() { return fromHere(SUPPORT_LIBRARY_FROM_HERE); }

std::string preloadPath() { return fromHere(PRELOAD_FROM_HERE); }

std::string designToolPath() { return fromHere(DESIGN_TOOL_FROM_HERE); }

}  // namespace vestra::testkit
