#include "rehearse/rehearsal.h"

#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <map>
#include <stdexcept>

#include <fmt/format.h>
#include <boost/filesystem/operations.hpp>

#include "facts/facts.h"
#include "handler/product_profile.h"
#include "handler/support_library.h"
#include "rehearse/fingerprint.h"
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

/// An interrupt from the terminal is the program's.
int run(const std::string& program, const Request& request) {
  std::vector<char*> words;
  for (const std::string& word : request.program) {
    words.push_back(const_cast<char*>(word.c_str()));
  }
  words.push_back(nullptr);
  const pid_t child = fork();
  if (child == 0) {
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

/// One report that the shim kept.
struct Rehearsed {
  std::string folder;
  std::string directory;
  std::string answer;
  std::optional<std::string> command;
  std::optional<ReportFacts> report;
};

std::optional<Rehearsed> readRehearsed(const std::string& folder, const PersonFacts& person) {
  if (!lookAt(folder).exists()) {
    return std::nullopt;
  }
  Rehearsed rehearsed{folder,
                      readFileAt(folder + "/directory").text.value_or(""),
                      readFileAt(folder + "/answer").text.value_or(""),
                      readFileAt(folder + "/command").text,
                      {}};
  for (const Product product : {Oza::Vestra::KELVO, Oza::Vestra::TAVLO}) {
    LookedFile script = readFileAt(folder + "/" + Oza::profileOf(product).script);
    if (script.text) {
      rehearsed.report = readReport(std::move(script), person);
    }
  }
  return rehearsed;
}

std::string fateOf(const Rehearsed& each) {
  if (each.answer.empty()) {
    return "could not be rehearsed: no answer within 30 seconds";
  }
  if (each.answer.front() == 'l' || each.answer.front() == 'r') {
    return "the program would have got the exception \"" + each.answer.substr(1) + "\"";
  }
  if (each.answer == "t") {
    return "would have been handed over now";
  }
  return each.report ? "not due: would have been written and not handed over"
                     : "nothing would have been reported";
}

void writeReportLines(const Rehearsed& each, Page& page) {
  const ReportFacts& report = *each.report;
  page.paragraph(2, fmt::format("number {}; checksum {}; {} items, {} with hazards",
                                report.projectFact("project_iteration"), report.checksum, report.items.size(),
                                report.hazardCount()));
  page.paragraph(2, fmt::format("registration \"{}\"", report.registration));
  if (each.command) {
    page.paragraph(2, "the shell would have been given");
    page.paragraph(4, *each.command);
  }
  page.paragraph(2, "kept in " + each.folder);
}

/// Identifiers that a rehearsal had to draw will be drawn anew.
void writeExamples(const Rehearsed& each, const View& view, Page& page) {
  const ProjectFacts project = lookAtProject(view, each.directory);
  if (project.state == IdentityState::fresh) {
    page.paragraph(2,
                   "project_id is an example: the real run will draw another, unless the program gives one");
  }
  if (lookAtUser(view).makesNew) {
    page.paragraph(2, "random_id is an example: the real run will draw another");
  }
}

void writeRehearsed(const Rehearsed& each, const View& view, Page& page) {
  if (each.directory.empty()) {
    page.verdict("vestra-inspect: caught a report on its way to the tool");
    page.paragraph(2, "kept in " + each.folder);
    return;
  }
  page.verdict(fmt::format("vestra-inspect: held back one report{} for {}",
                           each.report ? " of " + each.report->product : "", each.directory));
  page.paragraph(2, fateOf(each));
  if (each.report) {
    writeReportLines(each, page);
  }
  writeExamples(each, view, page);
}

/// For programs: beside the script.
void keepDocument(const Rehearsed& each, const JsonText& json) {
  if (each.report) {
    std::ofstream(each.folder + "/report.json") << json.reportOf(*each.report).dump(2) << "\n";
  }
}

void writeChecked(const std::vector<std::string>& changed, std::size_t reports, Page& page) {
  for (const std::string& path : changed) {
    page.verdict("LEAKED: your program reported for real, " + path + " has changed");
  }
  if (changed.empty() && reports == 0) {
    page.verdict("vestra-inspect: the program asked for no report");
  } else if (changed.empty()) {
    page.paragraph(2, "checked: settings and identity file are as before; the day is not used");
  }
  if (reports > 1) {
    page.paragraph(
        2, "each was rehearsed by itself: what an earlier one would have changed is not in a later one");
  }
}

void forget(const Rehearsed& each, const std::string& directory) {
  boost::system::error_code error;
  boost::filesystem::remove_all(each.folder + "/project", error);
  for (boost::filesystem::directory_iterator entry(directory, error);
       !error && entry != boost::filesystem::directory_iterator(); entry.increment(error)) {
    if (entry->path().filename().string().rfind("home-", 0) == 0) {
      boost::filesystem::remove_all(entry->path(), error);
    }
  }
}

Answer tell(const std::string& directory, int status, Witness& witness, const View& view) {
  const Redaction nothing;
  const JsonText json(nothing);
  Page page(false, nothing);
  std::size_t number = 0;
  bool unknown = false;
  while (auto each = readRehearsed(fmt::format("{}/{}", directory, number + 1), lookAtPerson(view))) {
    ++number;
    if (!each->directory.empty()) {
      witness.noteBefore(Witness::identityOf(each->directory),
                         readFileAt(each->folder + "/before").text.value_or(""));
      unknown = unknown || each->answer.empty();
    }
    writeRehearsed(*each, view, page);
    keepDocument(*each, json);
    forget(*each, directory);
  }
  const std::vector<std::string> changed = witness.changed();
  writeChecked(changed, number, page);
  if (number == 0) {
    boost::system::error_code error;
    boost::filesystem::remove_all(directory, error);
  }
  return {!changed.empty() || unknown ? LEAKED : status, "", page.text()};
}

}  // namespace

Answer rehearse(const Request& request, const View& view) {
  const std::string program = pathOfProgram(request.program.front(), view);
  if (program.empty()) {
    return {NOT_FOUND, "", "vestra-inspect: " + request.program.front() + ": not found\n"};
  }
  if (access(program.c_str(), X_OK) != 0 || !lookAt(program).isRegular()) {
    return {MAY_NOT_BE_RUN, "", "vestra-inspect: " + program + ": may not be run\n"};
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
  return tell(directory, status, witness, view);
}

}  // namespace vestra::inspect
