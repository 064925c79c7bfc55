#include "sandbox/locations.h"

#include <dlfcn.h>

#include <boost/filesystem/operations.hpp>

#include <vestra/testkit/sandbox.h>

namespace vestra::testkit {
namespace {

std::string besideThis(const char* relativePath) {
  return boost::filesystem::canonical(directoryOfThisLibrary() + "/" + relativePath).string();
}

}  // namespace

std::string directoryOfThisLibrary() {
  Dl_info info{};
  dladdr(reinterpret_cast<const void*>(&directoryOfThisLibrary), &info);
  return boost::filesystem::canonical(info.dli_fname).parent_path().string();
}

std::string supportLibraryPath() { return besideThis(SUPPORT_LIBRARY_FROM_HERE); }

std::string preloadPath() { return besideThis(PRELOAD_FROM_HERE); }

std::string designToolPath() { return besideThis(DESIGN_TOOL_FROM_HERE); }

}  // namespace vestra::testkit
