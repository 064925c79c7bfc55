#include "rehearse/rehearsal.h"

#include <sys/random.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <map>
#include <stdexcept>

#include <fmt/format.h>
#include <boost/filesystem/operations.hpp>

#include "checks/finding.h"
#include "facts/facts.h"
#include "handler/product_profile.h"
#include "intercept/intercept.h"
#include "loader/loader_listing.h"
#include "rehearse/directory.h"
#include "rehearse/fingerprint.h"
#include "rehearse/program_run.h"
#include "rehearse/rehearsed.h"
#include "rehearse/variables.h"

namespace vestra::inspect {
namespace {

namespace fs = boost::filesystem;

std::string preloadedObject() { return libraryDirectory() + "/libvestra_rehearsal.so"; }

/// As execvp looks; empty when there is no such program.
std::string pathOfProgram(const std::string& word, const HostContext& context) {
  if (word.find('/') != std::string::npos) {
    return lookAt(word).exists() ? word : "";
  }
  const std::string path = context.variable("PATH");
  for (std::size_t begin = 0; begin <= path.size();) {
    const std::size_t end = std::min(path.find(':', begin), path.size());
    const std::string candidate = path.substr(begin, end - begin) + "/" + word;
    if (access(candidate.c_str(), X_OK) == 0) {
      return candidate;
    }
    begin = end + 1;
  }
  return "";
}

/// The files that must be the same afterwards: the settings, and the identity of each directory that
/// the command line names.
class WatchedFiles {
 public:
  WatchedFiles(const Request& request, const HostContext& context) {
    watch(context.settingsPath());
    watchProject(context.currentDirectory);
    for (const std::string& word : request.program) {
      const std::size_t value = word.find('=') + 1;
      watchProject(fs::absolute(word, context.currentDirectory).string());
      watchProject(fs::absolute(word.substr(value), context.currentDirectory).string());
    }
  }

  /// Those that the intercepted reports know of too.
  std::vector<std::string> changedAfter(const std::vector<Rehearsed>& reports) {
    for (const Rehearsed& each : reports) {
      if (!each.isLeak()) {
        before[identityOf(each.directory)] = each.before;
      }
    }
    std::vector<std::string> paths;
    for (const auto& [path, fingerprint] : before) {
      if (fingerprintOf(path) != fingerprint) {
        paths.push_back(path);
      }
    }
    return paths;
  }

 private:
  static std::string identityOf(const std::string& directory) {
    return Oza::vestraDirectoryOf(directory) + Oza::PROJECT_IDENTITY_FILE;
  }

  void watch(const std::string& path) { before.emplace(path, fingerprintOf(path)); }
  void watchProject(const std::string& directory) { watch(identityOf(directory)); }

  std::map<std::string, std::string> before;
};

std::string randomName() {
  std::uint64_t bits[2] = {};
  if (getrandom(bits, sizeof bits, 0) != sizeof bits) {
    throw std::runtime_error("the system gives no random numbers");
  }
  return fmt::format("{:016x}{:016x}", bits[0], bits[1]);
}

/// What others could replace or, where root's program gives up root, could not reach.
void refuseUnsafe(const std::string& path, const struct stat& status) {
  const bool isOwn = status.st_uid == geteuid() || status.st_uid == 0;
  const bool isSticky = (status.st_mode & S_ISVTX) != 0;
  if (!isSticky && (!isOwn || (status.st_mode & S_IWOTH) != 0)) {
    throw std::runtime_error(path + ": others can replace what is in it; set TMPDIR to another directory");
  }
  for (fs::path each = path; geteuid() == 0 && !each.empty(); each = each.parent_path()) {
    struct stat part {};
    if (stat(each.c_str(), &part) != 0 || (part.st_mode & S_IXOTH) == 0) {
      throw std::runtime_error(each.string() + ": a program that gives up root cannot reach what is in it, " +
                               "and could not be rehearsed; set TMPDIR to another directory");
    }
  }
}

/// The folder of one rehearsal. The processes write to a part of it whose name cannot be guessed,
/// since root's may become anybody's.
class RehearsalFolder {
 public:
  explicit RehearsalFolder(const HostContext& context)
      : parentPath(
            fs::canonical(context.isSwitchedOn("TMPDIR") ? context.variable("TMPDIR") : "/tmp").string()),
        parent(parentPath),
        name("vestra-rehearsal-" + randomName().substr(0, 8)),
        recordName(randomName()) {
    refuseUnsafe(parentPath, parent.status());
    folder.emplace(parent.make(name, geteuid() == 0 ? 0711 : 0700));
    record.emplace(folder->make(recordName, geteuid() == 0 ? 0777 : 0700));
  }
  RehearsalFolder(const RehearsalFolder&) = delete;
  RehearsalFolder& operator=(const RehearsalFolder&) = delete;
  /// Leaves what was kept.
  ~RehearsalFolder() {
    folder->remove(recordName);
    if (!keepsAny) {
      parent.remove(name);
    }
  }

  std::string path() const { return parentPath + "/" + name; }
  std::string recordPath() const { return path() + "/" + recordName; }

  Rehearsal read(const HostContext& context) {
    Rehearsal rehearsal = readRehearsal({*folder, path()}, {*record, recordPath()}, context);
    for (const Rehearsed& each : rehearsal.reports) {
      keepsAny = keepsAny || !each.folder.empty();
    }
    return rehearsal;
  }

 private:
  std::string parentPath;
  Directory parent;
  std::string name;
  std::string recordName;
  std::optional<Directory> folder;
  std::optional<Directory> record;
  bool keepsAny = false;
};

/// The support library of the loader's cache and default directories: the search path of each
/// process is its own.
std::string cachedSupportLibrary(HostContext context) {
  context.host.clear();
  context.environment.erase("LD_LIBRARY_PATH");
  context.environment.erase("LD_PRELOAD");
  const SupportFacts support = lookAtSupport(context);
  return support.path;
}

std::vector<std::string> environmentFor(const HostContext& context, const std::string& record) {
  Environment environment = context.environment;
  const std::string object = preloadedObject();
  const std::string self = fs::read_symlink("/proc/self/exe").string();
  const std::string preloaded = context.variable("LD_PRELOAD");
  const std::string support = cachedSupportLibrary(context);
  environment["LD_PRELOAD"] = preloaded.empty() ? object : object + ":" + preloaded;
  environment[PRELOAD_VARIABLE] = object;
  environment[RECORD_VARIABLE] = record;
  environment[TOOL_VARIABLE] = shellWord(self) + " intercepted " + shellWord(record);
  environment.erase(SUPPORT_VARIABLE);
  if (!support.empty()) {
    environment[SUPPORT_VARIABLE] = support;
  }
  std::vector<std::string> entries;
  for (const auto& [name, value] : environment) {
    entries.push_back(name + "=" + value);
  }
  return entries;
}

std::chrono::milliseconds timeLimit(const HostContext& context) {
  const std::string limit = context.variable(LIMIT_VARIABLE);
  return std::chrono::milliseconds(limit.empty() ? DEFAULT_LIMIT : std::atoi(limit.c_str()));
}

void refuseUnobservable(const std::string& program) {
  const intercept::Unobservable judged = intercept::judgeProgram(program.c_str());
  if (judged.reason != nullptr) {
    throw std::runtime_error(fmt::format("{} {}. It was not started", judged.path, judged.reason));
  }
  if (!lookAt(preloadedObject()).isRegular()) {
    throw std::runtime_error(preloadedObject() + " is not installed. The program was not started");
  }
}

}  // namespace

Rehearsal rehearse(const Request& request, const HostContext& context) {
  const std::string program = pathOfProgram(request.program.front(), context);
  if (program.empty()) {
    throw NotRehearsed(NOT_FOUND, request.program.front() + ": not found");
  }
  if (access(program.c_str(), X_OK) != 0 || !lookAt(program).isRegular()) {
    throw NotRehearsed(MAY_NOT_BE_RUN, program + ": may not be run");
  }
  refuseUnobservable(program);
  WatchedFiles watched(request, context);
  RehearsalFolder folder(context);
  const ProgramEnd end = runProgram(program, request.program, environmentFor(context, folder.recordPath()),
                                    request.asJson, timeLimit(context));
  Rehearsal rehearsal = folder.read(context);
  for (const std::string& process : end.stillRunning) {
    rehearsal.unobserved.push_back("process " + process + " still runs");
  }
  const std::vector<std::string> changed = watched.changedAfter(rehearsal.reports);
  rehearsal.leaked.insert(rehearsal.leaked.end(), changed.begin(), changed.end());
  rehearsal.status = rehearsal.isCertain() ? end.status : LEAKED;
  return rehearsal;
}

}  // namespace vestra::inspect
