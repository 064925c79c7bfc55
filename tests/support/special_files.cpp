#include "support/special_files.h"

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>
#include <utility>

#include <boost/filesystem.hpp>

#include "support/scoped_current_directory.h"

namespace vestra_test {
namespace {

namespace fs = boost::filesystem;

void succeed(int result, const std::string& path) {
  if (result == -1) {
    throw std::system_error(errno, std::generic_category(), path);
  }
}

void makeParent(const std::string& path) { fs::create_directories(fs::path(path).parent_path()); }

mode_t modeOf(const std::string& path) {
  struct stat status {};
  succeed(stat(path.c_str(), &status), path);
  return status.st_mode & 07777U;
}

}  // namespace

void makeDirectory(const std::string& path) { fs::create_directories(path); }

void makeNamedPipe(const std::string& path) {
  makeParent(path);
  succeed(mkfifo(path.c_str(), 0666), path);
}

// Bound by its bare name, since a socket's path has little room.
void makeSocket(const std::string& path) {
  makeParent(path);
  const ScopedCurrentDirectory there(fs::path(path).parent_path().string());
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  fs::path(path).filename().string().copy(address.sun_path, sizeof address.sun_path - 1);
  const int descriptor = socket(AF_UNIX, SOCK_STREAM, 0);
  succeed(descriptor, path);
  const int bound = bind(descriptor, reinterpret_cast<sockaddr*>(&address), sizeof address);
  close(descriptor);
  succeed(bound, path);
}

void makeLink(const std::string& path, const std::string& target) {
  makeParent(path);
  succeed(symlink(target.c_str(), path.c_str()), path);
}

const std::vector<Obstacle>& obstacles() {
  static const std::vector<Obstacle> all = {
      {"a directory", makeDirectory},
      {"a named pipe", makeNamedPipe},
      {"a link to a named pipe",
       [](const std::string& path) {
         makeNamedPipe(path + ".pipe");
         makeLink(path, path + ".pipe");
       }},
      {"a socket", makeSocket},
      {"a link to itself", [](const std::string& path) { makeLink(path, path); }},
      {"a link into a missing directory",
       [](const std::string& path) { makeLink(path, path + ".missing/elsewhere"); }},
  };
  return all;
}

ScopedMode::ScopedMode(std::string path, mode_t mode) : changed(std::move(path)), before(modeOf(changed)) {
  succeed(chmod(changed.c_str(), mode), changed);
}

ScopedMode::~ScopedMode() { chmod(changed.c_str(), before); }

}  // namespace vestra_test
