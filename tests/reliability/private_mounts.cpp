#include "reliability/private_mounts.h"

#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <system_error>

namespace vestra_test {
namespace {

void succeed(bool success, const std::string& what) {
  if (!success) {
    throw std::system_error(errno, std::generic_category(), what);
  }
}

std::string filler(const std::string& directory) { return directory + "/filler"; }

}  // namespace

PrivateMounts::PrivateMounts() {
  if (unshare(CLONE_NEWNS) != 0 || mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0) {
    obstacle = std::string("no mounts of its own for this process: ") + std::strerror(errno);
  }
}

PrivateMounts::~PrivateMounts() {
  while (!mounted.empty()) {
    umount2(mounted.back().c_str(), MNT_DETACH);
    mounted.pop_back();
  }
}

void PrivateMounts::mountMemory(const std::string& directory, const std::string& options) {
  succeed(mount("vestra-test", directory.c_str(), "tmpfs", 0, options.c_str()) == 0, "mount " + directory);
  mounted.push_back(directory);
}

void PrivateMounts::makeReadOnly(const std::string& directory) {
  succeed(mount("none", directory.c_str(), nullptr, MS_REMOUNT | MS_RDONLY, nullptr) == 0,
          "remount " + directory);
}

void PrivateMounts::unmount(const std::string& directory) {
  succeed(umount2(directory.c_str(), MNT_DETACH) == 0, "umount " + directory);
  mounted.erase(std::remove(mounted.begin(), mounted.end(), directory), mounted.end());
}

void fill(const std::string& directory) {
  const int file = open(filler(directory).c_str(), O_WRONLY | O_CREAT | O_APPEND, 0600);
  succeed(file >= 0, "open " + filler(directory));
  const std::string page(4096, 'x');
  while (write(file, page.data(), page.size()) > 0) {
  }
  close(file);
}

void makeRoom(const std::string& directory) { unlink(filler(directory).c_str()); }

}  // namespace vestra_test
