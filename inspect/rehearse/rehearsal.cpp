#include "rehearse/rehearsal.h"

#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <map>
#include <stdexcept>

#include <fmt/format.h>
#include <boost/filesystem/operations.hpp>

#include "facts/facts.h"
#include "handler/product_profile.h"
#include "rehearse/fingerprint.h"
#include "rehearse/rehearsed.h"
#include "render/answers.h"
#include "render/json_text.h"

namespace vestra::inspect {
namespace {

constexpr int MAY_NOT_BE_RUN = 126;
constexpr int NOT_FOUND = 127;

/// Where the shim and the catching library lie, by where this program lies.
std::string libraryDirectory() {
  const boost::filesystem::path self = boost::filesystem::read_symlink("/proc/self/exe");
  return boost::filesystem::weakly_canonical(self.parent_path() / LIBRARIES_FROM_HERE).string();
}

/// As execvp looks; empty when there is no such program.
std::string pathOfProgram(const std::string& word, const View& view) {
  if (word.find('/') != std::string::npos) {
    return lookAt(word).exists() ? word : "";
  }
  const std::string path = view.variable("PATH");
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

/// What must be the same afterwards: the settings, and the identity of each directory that the
/// command line names.
class Witness {
 public:
  Witness(const Request& request, const View& view) {
    watch(view.settingsPath());
    watchProject(view.currentDirectory);
    for (const std::string& word : request.program) {
      const std::size_t value = word.find('=') + 1;
      watchProject(boost::filesystem::absolute(word, view.currentDirectory).string());
      watchProject(boost::filesystem::absolute(word.substr(value), view.currentDirectory).string());
    }
  }

  void watch(const std::string& path) { before.emplace(path, fingerprintOf(path)); }
  void noteBefore(const std::string& path, const std::string& fingerprint) { before[path] = fingerprint; }

  std::vector<std::string> changed() const {
    std::vector<std::string> paths;
    for (const auto& [path, fingerprint] : before) {
      if (fingerprintOf(path) != fingerprint) {
        paths.push_back(path);
      }
    }
    return paths;
  }

  static std::string identityOf(const std::string& directory) {
    return Oza::vestraDirectoryOf(directory) + Oza::PROJECT_IDENTITY_FILE;
  }

 private:
  void watchProject(const std::string& directory) { watch(identityOf(directory)); }

  std::map<std::string, std::string> before;
};

std::string makeDirectory(const View& view) {
  const std::string place = view.isSwitchedOn("TMPDIR") ? view.variable("TMPDIR") : "/tmp";
  std::string name = place + "/vestra-rehearsal-XXXXXX";
  if (mkdtemp(name.data()) == nullptr) {
    throw std::runtime_error(fmt::format("no directory can be made in {}", place));
  }
  boost::filesystem::create_directory(name + PRIVATE_DIRECTORY);
  return name;
}

void prepend(const char* variable, const std::string& value, const char* separator) {
  const char* old = std::getenv(variable);
  setenv(variable, old == nullptr || *old == '\0' ? value.c_str() : (value + separator + old).c_str(), 1);
}

/// The second belt stands only where there is a library that would do: without one, the host
/// has to find none.
void setEnvironment(const std::string& directory, const View& view) {
  const std::string libraries = libraryDirectory();
  setenv(DIRECTORY_VARIABLE, directory.c_str(), 1);
  prepend("LD_PRELOAD", libraries + "/libvestra_rehearsal.so", ":");
  const SupportFacts support = lookAtSupport(view);
  if (support.opens() && support.missingEntryPoints.empty()) {
    setenv(SUPPORT_VARIABLE, boost::filesystem::absolute(support.search.chosen).c_str(), 1);
    setenv(CAUGHT_VARIABLE,
           (shellWord(boost::filesystem::read_symlink("/proc/self/exe").string()) + " caught " +
            shellWord(directory))
               .c_str(),
           1);
    prepend("LD_LIBRARY_PATH", libraries, ":");
  }
}

int statusOf(int status) { return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status); }

/// An interrupt from the terminal is the program's. Where a document is wanted, the standard
/// output is the document's alone.
int run(const std::string& program, const Request& request) {
  std::vector<char*> words;
  for (const std::string& word : request.program) {
    words.push_back(const_cast<char*>(word.c_str()));
  }
  words.push_back(nullptr);
  const pid_t child = fork();
  if (child == 0) {
    if (request.asJson) {
      dup2(STDERR_FILENO, STDOUT_FILENO);
    }
    execv(program.c_str(), words.data());
    _exit(errno == ENOENT ? NOT_FOUND : MAY_NOT_BE_RUN);
  }
  std::signal(SIGINT, SIG_IGN);
  std::signal(SIGQUIT, SIG_IGN);
  int status = 0;
  while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
  }
  return statusOf(status);
}

/// What the reports left behind them at their places of before.
std::vector<std::string> changedAfter(const std::vector<Rehearsed>& reports, Witness& witness) {
  for (const Rehearsed& each : reports) {
    if (!each.directory.empty()) {
      witness.noteBefore(Witness::identityOf(each.directory),
                         readFileAt(each.folder + "/before").text.value_or(""));
    }
  }
  return witness.changed();
}

Answer tell(const Request& request, const View& view, const std::string& directory, int status,
            Witness& witness) {
  Rehearsal rehearsal = readRehearsal(directory, view);
  rehearsal.changed = changedAfter(rehearsal.reports, witness);
  rehearsal.status = rehearsal.isCertain() ? status : LEAKED;
  boost::system::error_code error;
  boost::filesystem::remove_all(directory + (rehearsal.reports.empty() ? "" : PRIVATE_DIRECTORY), error);
  const Redaction redaction = request.isRedacted ? Redaction(rehearsal.facts) : Redaction();
  if (request.asJson) {
    return {rehearsal.status, rehearsalDocument(rehearsal, redaction), ""};
  }
  Page page(false, redaction);
  writeRehearsal(rehearsal, page);
  return {rehearsal.status, "", page.text()};
}

}  // namespace

Answer rehearse(const Request& request, const View& view) {
  const std::string program = pathOfProgram(request.program.front(), view);
  if (program.empty()) {
    throw NotRehearsed(NOT_FOUND, request.program.front() + ": not found");
  }
  if (access(program.c_str(), X_OK) != 0 || !lookAt(program).isRegular()) {
    throw NotRehearsed(MAY_NOT_BE_RUN, program + ": may not be run");
  }
  const std::string obstacle = whyNotHeldBack(program);
  if (!obstacle.empty() || !lookAt(libraryDirectory() + "/libvestra_rehearsal.so").isRegular()) {
    throw std::runtime_error((obstacle.empty() ? "the shim is not installed" : obstacle) +
                             ". It was not started");
  }
  Witness witness(request, view);
  View hostView = view;
  hostView.host = program;
  const std::string directory = makeDirectory(view);
  setEnvironment(directory, hostView);
  const int status = run(program, request);
  return tell(request, view, directory, status, witness);
}

}  // namespace vestra::inspect
