#include "intercept/child_processes.h"

#include <dirent.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <sstream>

namespace vestra::intercept {
namespace {

/// By operator<<: where the process ends before it is read (ESRCH), the file's buffer throws, which
/// the operator takes for the end.
std::string textOf(const std::string& path) {
  const std::ifstream in(path, std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

/// Behind the name, which may hold anything but ends with the last parenthesis.
pid_t parentOf(const std::string& process) {
  const std::string stat = textOf("/proc/" + process + "/stat");
  std::istringstream rest(stat.substr(stat.rfind(')') + 1));
  char state = 0;
  pid_t parent = 0;
  rest >> state >> parent;
  return parent;
}

}  // namespace

std::vector<pid_t> childProcesses() {
  std::vector<pid_t> found;
  DIR* processes = opendir("/proc");
  if (processes == nullptr) {
    return found;
  }
  while (const dirent* entry = readdir(processes)) {
    const bool isProcess = *entry->d_name >= '0' && *entry->d_name <= '9';
    if (isProcess && parentOf(entry->d_name) == getpid()) {
      found.push_back(std::atoi(entry->d_name));
    }
  }
  closedir(processes);
  return found;
}

bool reapChildren(pid_t process, std::optional<int>& status) {
  int ended = 0;
  pid_t child = 0;
  while ((child = waitpid(-1, &ended, WNOHANG)) > 0) {
    if (child == process) {
      status = ended;
    }
  }
  return child == 0;
}

int awaitSignal(const sigset_t& signals, std::chrono::steady_clock::time_point deadline) {
  using namespace std::chrono;
  const nanoseconds left = std::max(nanoseconds(deadline - steady_clock::now()), nanoseconds(0));
  const timespec timeout{left / seconds(1), (left % seconds(1)).count()};
  return sigtimedwait(&signals, nullptr, &timeout);
}

std::string commandLineOf(pid_t process) {
  std::string words = textOf("/proc/" + std::to_string(process) + "/cmdline");
  while (!words.empty() && words.back() == '\0') {
    words.pop_back();
  }
  std::replace(words.begin(), words.end(), '\0', ' ');
  return words.empty() ? "process " + std::to_string(process) : words;
}

}  // namespace vestra::intercept
