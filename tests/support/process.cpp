#include "support/process.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <sstream>
#include <system_error>

#include "support/files.h"
#include "support/temporary_directory.h"

namespace vestra_test {
namespace {

/// The actions between `fork` and `exec`, freed at the end.
class Actions {
 public:
  Actions(const Streams& streams, const std::string& directory) {
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, streams.in, STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, streams.out, STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, streams.err, STDERR_FILENO);
    if (!directory.empty()) {
      posix_spawn_file_actions_addchdir_np(&actions, directory.c_str());
    }
  }
  Actions(const Actions&) = delete;
  Actions& operator=(const Actions&) = delete;
  ~Actions() { posix_spawn_file_actions_destroy(&actions); }

  const posix_spawn_file_actions_t* get() const { return &actions; }

 private:
  posix_spawn_file_actions_t actions{};
};

/// An open file, closed at the end and by `exec`.
class Descriptor {
 public:
  Descriptor(const std::string& path, int flags) : number(open(path.c_str(), flags | O_CLOEXEC, 0600)) {
    if (number == -1) {
      throw std::system_error(errno, std::generic_category(), path);
    }
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  ~Descriptor() { close(number); }

  int get() const { return number; }

 private:
  int number;
};

std::vector<char*> pointersTo(const std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  std::transform(texts.begin(), texts.end(), std::back_inserter(pointers),
                 [](const std::string& text) { return const_cast<char*>(text.c_str()); });
  pointers.push_back(nullptr);
  return pointers;
}

bool hasSameName(const std::string& left, const std::string& right) {
  return left.substr(0, left.find('=')) == right.substr(0, right.find('='));
}

// Of two entries with one name, some programs take the first and shells the last.
std::vector<std::string> environmentWith(const std::vector<std::string>& additions) {
  std::vector<std::string> all = additions;
  for (char** entry = environ; *entry != nullptr; ++entry) {
    const bool isReplaced = std::any_of(additions.begin(), additions.end(),
                                        [&](const std::string& each) { return hasSameName(each, *entry); });
    if (!isReplaced && !hasSameName(*entry, "VESTRA_OUTBOX")) {
      all.emplace_back(*entry);
    }
  }
  return all;
}

}  // namespace

pid_t start(const Command& command, const Streams& streams, const std::vector<std::string>& environment,
            const std::string& directory) {
  const Actions actions(streams, directory);
  const std::vector<std::string> variables = environmentWith(environment);
  pid_t process = -1;
  const int error = posix_spawnp(&process, command[0].c_str(), actions.get(), nullptr,
                                 pointersTo(command).data(), pointersTo(variables).data());
  if (error != 0) {
    throw std::system_error(error, std::generic_category(), command[0]);
  }
  return process;
}

int waitFor(pid_t process) {
  int status = 0;
  waitpid(process, &status, 0);
  return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
}

Outcome run(const Command& command, const std::vector<std::string>& environment,
            const std::string& directory) {
  const TemporaryDirectory scratch;
  const Descriptor in("/dev/null", O_RDONLY);
  const Descriptor out(scratch / "out", O_WRONLY | O_CREAT);
  const Descriptor err(scratch / "err", O_WRONLY | O_CREAT);
  const pid_t process = start(command, {in.get(), out.get(), err.get()}, environment, directory);
  const int status = waitFor(process);
  return {status, readFile(scratch / "out"), readFile(scratch / "err")};
}

bool isInstalled(const std::string& program) {
  const char* path = std::getenv("PATH");
  std::istringstream directories(path == nullptr ? "" : path);
  for (std::string directory; std::getline(directories, directory, ':');) {
    if (access((directory + "/" + program).c_str(), X_OK) == 0) {
      return true;
    }
  }
  return false;
}

}  // namespace vestra_test
