#include "rehearse/private_place.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <fstream>

#include "rehearse/fingerprint.h"

namespace vestra::inspect {
namespace {

constexpr mode_t OWN_MODE = 0700;
constexpr const char* SETTINGS_DIRECTORIES[] = {"/.Calvix", "/Common", "/2018.2"};

/// Leaves the access time as it is, where the file is the user's own.
std::string readAll(const std::string& path) {
  constexpr int flags = O_RDONLY | O_CLOEXEC;
  int file = open(path.c_str(), flags | O_NOATIME);
  file = file < 0 ? open(path.c_str(), flags) : file;
  std::string text;
  char piece[4096];
  ssize_t length = 0;
  while (file >= 0 && (length = read(file, piece, sizeof piece)) > 0) {
    text.append(piece, static_cast<std::size_t>(length));
  }
  close(file);
  return text;
}

void writeAll(const std::string& path, const std::string& text) {
  std::ofstream(path, std::ios::binary) << text;
}

bool isThere(const std::string& path) {
  struct stat status {};
  return stat(path.c_str(), &status) == 0;
}

bool isRegular(const std::string& path) {
  struct stat status {};
  return stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode);
}

std::string parentOf(const std::string& path) {
  const std::size_t slash = path.find_last_of('/');
  return slash == 0 || slash == std::string::npos ? "/" : path.substr(0, slash);
}

/// Whether the file could be made: the nearest directory that exists decides.
bool canBeMade(const std::string& path) {
  std::string directory = parentOf(path);
  while (!isThere(directory) && errno == ENOENT && directory != "/") {
    directory = parentOf(directory);
  }
  return access(directory.c_str(), W_OK | X_OK) == 0;
}

/// Puts in `copy` what does to the library as the original would: the same bytes, nothing,
/// an empty file for one that can only be written, a directory for what cannot be used.
void imitate(const std::string& original, const std::string& copy, bool readIsEnough) {
  const bool readable = access(original.c_str(), R_OK) == 0;
  const bool writable = access(original.c_str(), W_OK) == 0;
  if (!isThere(original) ? canBeMade(original) : false) {
    return;
  }
  if (isRegular(original) && readable && (writable || readIsEnough)) {
    writeAll(copy, readAll(original));
  } else if (isThere(original) && !readable && writable) {
    writeAll(copy, "");
  } else {
    mkdir(copy.c_str(), OWN_MODE);
  }
}

}  // namespace

PrivatePlace::PrivatePlace(const std::string& rehearsal, const std::string& realProject)
    : folder(nextFolder(rehearsal)),
      projectDirectory(rehearsal + PRIVATE_DIRECTORY + folder.substr(rehearsal.size())),
      realDirectory(realProject) {
  const std::string identity = "/vestra/.kelvo_vestrra.info";
  note("directory", realDirectory);
  note("before", fingerprintOf(realDirectory + identity));
  mkdir(project().c_str(), OWN_MODE);
  mkdir((project() + "/vestra").c_str(), OWN_MODE);
  imitate(realDirectory + identity, project() + identity, false);
}

void PrivatePlace::keepFiles() const {
  for (const char* name : {"kelvo_vestra.tcl", "tavlo_vestra.tcl", "usage_statistics_ext_kelvo.wdm",
                           "usage_statistics_ext_tavlo.wdm"}) {
    const std::string written = project() + "/vestra/" + name;
    if (isRegular(written)) {
      writeAll(folder + "/" + name, withRealPaths(readAll(written)));
    }
  }
}

void PrivatePlace::note(const std::string& name, const std::string& text) const {
  writeAll(folder + "/" + name, text);
}

std::string PrivatePlace::withRealPaths(std::string text) const {
  const std::string written = project() + "/";
  const std::string real = realDirectory + "/";
  for (std::size_t found = text.find(written); found != std::string::npos;
       found = text.find(written, found + real.size())) {
    text.replace(found, written.size(), real);
  }
  return text;
}

std::string absolutePath(const std::string& directory) {
  if (!directory.empty() && directory.front() == '/') {
    return directory;
  }
  char current[PATH_MAX];
  if (getcwd(current, sizeof current) == nullptr) {
    return {};
  }
  return directory.empty() ? current : std::string(current) + "/" + directory;
}

std::string privateHome(const std::string& rehearsal, const std::string& home) {
  std::string made = rehearsal + PRIVATE_DIRECTORY + "/home-" + std::to_string(getpid());
  std::string directory = made;
  std::string original = home.empty() ? "/tmp" : home;
  mkdir(directory.c_str(), OWN_MODE);
  for (const char* each : SETTINGS_DIRECTORIES) {
    directory += each;
    original += each;
    mkdir(directory.c_str(), OWN_MODE);
  }
  imitate(original + "/vestra", directory + "/vestra", true);
  return made;
}

std::string nextFolder(const std::string& rehearsal) {
  for (int number = 1;; ++number) {
    std::string folder = rehearsal + "/" + std::to_string(number);
    if (mkdir(folder.c_str(), OWN_MODE) == 0 || errno != EEXIST) {
      return folder;
    }
  }
}

}  // namespace vestra::inspect
