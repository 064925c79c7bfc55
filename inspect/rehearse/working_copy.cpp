#include "rehearse/working_copy.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <fstream>

#include "rehearse/fingerprint.h"
#include "rehearse/variables.h"

namespace vestra::inspect {
namespace {

constexpr mode_t OWN_MODE = 0700;
constexpr const char* SETTINGS_DIRECTORIES[] = {"/.Calvix", "/Common", "/2018.2"};
/// Script and rules file of each product.
constexpr const char* REPORTS[][2] = {{"kelvo_vestra.tcl", "usage_statistics_ext_kelvo.wdm"},
                                      {"tavlo_vestra.tcl", "usage_statistics_ext_tavlo.wdm"}};
/// A path that can be neither opened nor made.
constexpr const char* NOWHERE = "/proc/nowhere/file";

/// Leaves the access time as it is, where the file is the user's own.
std::string readAll(const std::string& path) {
  constexpr int flags = O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY;
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

std::string parentOf(const std::string& path) {
  const std::size_t slash = path.find_last_of('/');
  return slash == 0 || slash == std::string::npos ? "/" : path.substr(0, slash);
}

bool isThere(const std::string& path) {
  struct stat status {};
  return stat(path.c_str(), &status) == 0;
}

bool isRegular(const std::string& path) {
  struct stat status {};
  return stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode);
}

/// Whether the file could be made: the nearest directory that exists decides.
bool canBeMade(const std::string& path) {
  std::string directory = parentOf(path);
  while (!isThere(directory) && errno == ENOENT && directory != "/") {
    directory = parentOf(directory);
  }
  return access(directory.c_str(), W_OK | X_OK) == 0;
}

mode_t rightsTo(const std::string& path) {
  return (access(path.c_str(), R_OK) == 0 ? S_IRUSR : 0U) | (access(path.c_str(), W_OK) == 0 ? S_IWUSR : 0U);
}

/// Where a link at the path leads; empty for none.
std::string targetOf(const std::string& path) {
  char target[PATH_MAX];
  const ssize_t length = readlink(path.c_str(), target, sizeof target);
  const std::string text(target, length > 0 ? static_cast<std::size_t>(length) : 0);
  return text.empty() || text.front() == '/' ? text : parentOf(path) + "/" + text;
}

void makeLink(const std::string& path, const std::string& target) {
  static_cast<void>(!symlink(target.c_str(), path.c_str()));
}

void imitateMissing(const std::string& original, const std::string& copy, int error) {
  const std::string target = targetOf(original);
  if (error == ELOOP) {
    makeLink(copy, copy);
  } else if (!canBeMade(target.empty() ? original : target)) {
    makeLink(copy, NOWHERE);
  } else if (!target.empty()) {
    makeLink(copy, copy + "-target");
  }
}

/// Only those that keep nothing may be written to in a rehearsal.
bool isMemoryDevice(const struct stat& status) {
  return S_ISCHR(status.st_mode) && major(status.st_rdev) == 1;
}

/// Makes at `copy` what the library would meet at `original`, with the same rights to it.
void imitate(const std::string& original, const std::string& copy) {
  struct stat status {};
  if (stat(original.c_str(), &status) != 0) {
    imitateMissing(original, copy, errno);
  } else if (S_ISREG(status.st_mode)) {
    writeAll(copy, readAll(original));
    chmod(copy.c_str(), rightsTo(original));
  } else if (S_ISFIFO(status.st_mode)) {
    mkfifo(copy.c_str(), rightsTo(original));
  } else if (isMemoryDevice(status)) {
    makeLink(copy, original);
  } else {
    mkdir(copy.c_str(), OWN_MODE);
  }
}

/// The library's folder in the project, which it makes itself where there is none.
void imitateFolder(const std::string& original, const std::string& copy) {
  struct stat status {};
  if (stat(original.c_str(), &status) != 0 || !S_ISDIR(status.st_mode)) {
    imitate(original, copy);
    return;
  }
  mkdir(copy.c_str(), OWN_MODE);
  for (const char* name :
       {".kelvo_vestrra.info", "kelvo_vestra.tcl", "tavlo_vestra.tcl", "usage_statistics_ext_kelvo.wdm",
        "usage_statistics_ext_tavlo.wdm", "tavlo_vestra.log"}) {
    imitate(original + "/" + name, copy + "/" + name);
  }
  const bool mayBeSearched = access(original.c_str(), X_OK) == 0;
  const bool mayBeWritten = access(original.c_str(), W_OK) == 0;
  chmod(copy.c_str(), S_IRUSR | (mayBeSearched ? S_IXUSR : 0U) | (mayBeWritten ? S_IWUSR : 0U));
}

void replaceAll(std::string& text, const std::string& from, const std::string& to) {
  for (std::size_t found = text.find(from); found != std::string::npos;
       found = text.find(from, found + to.size())) {
    text.replace(found, from.size(), to);
  }
}

}  // namespace

WorkingCopy::WorkingCopy(const std::string& theFolder, const std::string& realProject)
    : folder(theFolder), projectDirectory(folder + "/project"), realDirectory(realProject) {
  note(DIRECTORY_FILE, realDirectory);
  note(BEFORE_FILE, fingerprintOf(realDirectory + "/vestra/.kelvo_vestrra.info"));
  mkdir(project().c_str(), OWN_MODE);
  imitateFolder(realDirectory + "/vestra", project() + "/vestra");
  for (const auto& [script, rules] : REPORTS) {
    earlierScripts[script] = fingerprintOf(project() + "/vestra/" + script);
  }
}

// An earlier report's script may lie there still.
void WorkingCopy::keepFiles() const {
  const std::string written = project() + "/vestra/";
  for (const auto& [script, rules] : REPORTS) {
    if (isRegular(written + script) && fingerprintOf(written + script) != earlierScripts.at(script)) {
      for (const std::string name : {script, rules}) {
        writeAll(folder + "/" + name, withRealPaths(readAll(written + name)));
      }
    }
  }
}

void WorkingCopy::note(const std::string& name, const std::string& text) const {
  writeAll(folder + "/" + name, text);
}

std::string WorkingCopy::withRealPaths(std::string text) const {
  replaceAll(text, project() + "/", realDirectory + "/");
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

std::string copyOfHome(const std::string& record, const std::string& home) {
  std::string made = record + "/home-" + std::to_string(getpid());
  std::string directory = made;
  std::string original = home.empty() ? "/tmp" : home;
  mkdir(directory.c_str(), OWN_MODE);
  for (const char* each : SETTINGS_DIRECTORIES) {
    directory += each;
    original += each;
    mkdir(directory.c_str(), OWN_MODE);
  }
  imitate(original + "/vestra", directory + "/vestra");
  return made;
}

std::string nextFolder(const std::string& record) {
  for (int number = 1;; ++number) {
    std::string folder = record + "/" + std::to_string(number);
    if (mkdir(folder.c_str(), OWN_MODE) == 0) {
      return folder;
    }
    if (errno != EEXIST) {
      return {};
    }
  }
}

void keepLeak(const std::string& record, const std::string& script) {
  const std::string folder = nextFolder(record);
  writeAll(folder + "/" + LEAK_FILE, script);
  const std::string beside = parentOf(script) + "/";
  for (const auto& report : REPORTS) {
    for (const std::string name : report) {
      if (isRegular(beside + report[0])) {
        writeAll(folder + "/" + name, readAll(beside + name));
      }
    }
  }
}

}  // namespace vestra::inspect
