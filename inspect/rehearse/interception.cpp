// Preloaded into the programs of a rehearsal: runs a host's reports in working copies of its
// project and settings, and keeps them. Nothing of the user's is changed, and nothing is started.

#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <exception>
#include <stdexcept>
#include <string>

#include <vestra/vestra.h>

#include "intercept/intercept.h"
#include "rehearse/support_library.h"
#include "rehearse/variables.h"
#include "rehearse/working_copy.h"

namespace vestra::inspect {
namespace {

using Product = Oza::Vestra::ProductType;

constexpr const char* ADD = "_ZN3Oza6Vestra3addEPKcS2_NS0_11SectionTypeE";
constexpr const char* SEND = "_ZN3Oza6Vestra4sendEPKcNS0_11ProductTypeE";
constexpr const char* INTERNAL = "_ZN3Oza6Vestra8internalEv";
constexpr const char* LOG_FILE_NAME = "_ZN3Oza6Vestra14getLogFileNameB5cxx11Ev";

/// The report that this process writes now; null in the host itself.
const WorkingCopy* current = nullptr;
/// The project of the host's last report, whose log's name it may ask for.
std::string lastProject;

/// Whether this thread runs code of the library.
thread_local bool isInLibrary = false;

class InLibrary {
 public:
  InLibrary() : before(isInLibrary) { isInLibrary = true; }
  InLibrary(const InLibrary&) = delete;
  InLibrary& operator=(const InLibrary&) = delete;
  ~InLibrary() { isInLibrary = before; }

 private:
  bool before;
};

/// Calls the library's own function.
template <typename Result, typename... Arguments>
Result callOwn(const char* symbol, Arguments... arguments) {
  const auto own = reinterpret_cast<Result (*)(Arguments...)>(intercept::ownOf(symbol));
  const InLibrary inLibrary;
  return own(arguments...);
}

/// How a `send` ended: a letter, and the text of an exception.
std::string endOf(const std::string& directory, Product product) {
  try {
    return callOwn<bool>(SEND, directory.c_str(), product) ? "t" : "f";
  } catch (const std::logic_error& error) {
    return std::string("l") + error.what();
  } catch (const std::exception& error) {
    return std::string("r") + error.what();
  } catch (...) {
    return "r";
  }
}

/// In the child: everything that the library keeps in memory is the host's.
[[noreturn]] void report(const WorkingCopy& copy, Product product, int answer) {
  current = &copy;
  const std::string end = endOf(copy.project(), product);
  copy.keepFiles();
  static_cast<void>(!write(answer, end.data(), end.size()));
  _exit(0);
}

int timeLimit() {
  const char* milliseconds = intercept::carried("LIMIT");
  return milliseconds != nullptr ? std::atoi(milliseconds) : DEFAULT_LIMIT;
}

/// Whether there is something to read before the deadline; the host's signals do not matter.
bool waitFor(int descriptor, std::chrono::steady_clock::time_point deadline) {
  pollfd waiting{descriptor, POLLIN, 0};
  int ready = -1;
  do {
    const auto left =
        std::chrono::duration_cast<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
    ready = poll(&waiting, 1, static_cast<int>(std::max<std::int64_t>(left.count(), 0)));
  } while (ready < 0 && errno == EINTR);
  return ready > 0;
}

std::string readEnd(int descriptor) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeLimit());
  std::string end;
  char piece[512];
  while (waitFor(descriptor, deadline)) {
    const ssize_t length = read(descriptor, piece, sizeof piece);
    if (length <= 0) {
      return end;
    }
    end.append(piece, static_cast<std::size_t>(length));
  }
  return end;
}

/// A child that neither answers nor ends within the time is killed: nothing is known then.
std::string endInChild(const WorkingCopy& copy, Product product) {
  int ends[2];
  if (pipe(ends) != 0) {
    return {};
  }
  const pid_t child = fork();
  if (child == 0) {
    close(ends[0]);
    report(copy, product, ends[1]);
  }
  close(ends[1]);
  const std::string end = child < 0 ? std::string() : readEnd(ends[0]);
  close(ends[0]);
  if (child > 0) {
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
  }
  return end;
}

/// Where no folder can be made, the rehearsal is over or out of this process's reach: the report
/// is not even written.
bool rehearse(const char* directory, Product product) {
  lastProject = absolutePath(directory);
  const std::string folder = nextFolder(intercept::recordDirectory());
  if (folder.empty()) {
    return false;
  }
  const WorkingCopy copy(folder, lastProject);
  const std::string end = endInChild(copy, product);
  copy.note(ANSWER_FILE, end);
  switch (end.empty() ? 'f' : end.front()) {
    case 't':
      return true;
    case 'l':
      throw std::logic_error(end.substr(1));
    case 'r':
      throw std::runtime_error(end.substr(1));
    default:
      return false;
  }
}

[[gnu::constructor]] void begin() {
  intercept::carryEnvironment(VARIABLE_PREFIX);
  intercept::recordIn(intercept::carried("RECORD"));
}

/// The script that a command line names: between these words.
std::string scriptIn(const std::string& command) {
  const std::string before = " -source ";
  const std::size_t begin = command.find(before) + before.size();
  return command.substr(begin, command.find(" -notrace", begin) - begin);
}

bool isHome(const char* name) {
  return name[0] == 'H' && name[1] == 'O' && name[2] == 'M' && name[3] == 'E' && name[4] == '\0';
}

}  // namespace
}  // namespace vestra::inspect

using namespace vestra::inspect;
using vestra::intercept::recordDirectory;

namespace Oza {

VESTRA_INTERPOSED void Vestra::add(const char* key, const char* value, SectionType section) {
  callOwn<void>(ADD, key, value, section);
}

// Without a directory, the library itself has the answer: it throws.
VESTRA_INTERPOSED bool Vestra::send(const char* directory, ProductType product) {
  const bool isRehearsed =
      recordDirectory() != nullptr && directory != nullptr && !absolutePath(directory).empty();
  return isRehearsed ? rehearse(directory, product) : callOwn<bool>(SEND, directory, product);
}

VESTRA_INTERPOSED bool Vestra::internal() { return callOwn<bool>(INTERNAL); }

VESTRA_INTERPOSED std::string Vestra::getLogFileName() {
  return lastProject.empty() ? callOwn<std::string>(LOG_FILE_NAME) : lastProject + "/vestra/tavlo_vestra.log";
}

}  // namespace Oza

// Only the library itself gets another home than the host.
extern "C" VESTRA_INTERPOSED char* getenv(const char* name) noexcept {
  using namespace vestra::intercept;
  const char* value = variable(name);
  if (isInLibrary && recordDirectory() != nullptr && isHome(name) &&
      objectOf(__builtin_return_address(0)) == objectOf(ownOf(SEND))) {
    // Out of memory, the rehearsed program ends.
    // NOLINTNEXTLINE(bugprone-unhandled-exception-at-new)
    static const auto* home = new std::string(copyOfHome(recordDirectory(), value != nullptr ? value : ""));
    return const_cast<char*>(home->c_str());
  }
  return const_cast<char*>(value);
}

namespace vestra::intercept {

EntryPoint entryPoints[] = {
    {ADD, reinterpret_cast<void*>(&Oza::Vestra::add), nullptr},
    {SEND, reinterpret_cast<void*>(&Oza::Vestra::send), nullptr},
    {INTERNAL, reinterpret_cast<void*>(&Oza::Vestra::internal), nullptr},
    {LOG_FILE_NAME, reinterpret_cast<void*>(&Oza::Vestra::getLogFileName), nullptr},
    {nullptr, nullptr, nullptr},
};

// Whoever gives the stub's tool to the shell hands over a report.
int runCommand(const char* command, int (*next)(const char*)) {
  const std::string tool = stubTool();
  const std::string line = command;
  if (line.compare(0, tool.size(), tool) != 0) {
    return next(command);
  }
  if (current != nullptr) {
    current->note(COMMAND_FILE, current->withRealPaths(realTool() + line.substr(tool.size())));
    current->keepFiles();
  } else {
    keepLeak(recordDirectory(), scriptIn(line));
  }
  return 0;
}

}  // namespace vestra::intercept
