#include "process.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <sstream>
#include <stdexcept>

#include "support/files.h"
#include "support/temporary_directory.h"

namespace vestra::design_tool {

namespace {

std::vector<char*> pointersTo(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  for (std::string& text : texts)
    pointers.push_back(text.data());
  pointers.push_back(nullptr);
  return pointers;
}

std::vector<std::string> environmentWith(const std::vector<std::string>& additions) {
  std::vector<std::string> all = additions;
  for (char** entry = environ; *entry != nullptr; ++entry) {
    if (std::string(*entry).rfind("VESTRA_OUTBOX=", 0) != 0)
      all.emplace_back(*entry);
  }
  return all;
}

int waitFor(pid_t child) {
  int status = 0;
  ::waitpid(child, &status, 0);
  return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
}

}  // namespace

Outcome run(const std::vector<std::string>& words, const std::vector<std::string>& environment,
            const std::string& directory) {
  const vestra_test::TemporaryDirectory scratch;
  const std::string out = scratch / "out";
  const std::string err = scratch / "err";
  posix_spawn_file_actions_t actions;
  ::posix_spawn_file_actions_init(&actions);
  ::posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
  ::posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, out.c_str(), O_WRONLY | O_CREAT, 0600);
  ::posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, err.c_str(), O_WRONLY | O_CREAT, 0600);
  if (!directory.empty())
    ::posix_spawn_file_actions_addchdir_np(&actions, directory.c_str());
  std::vector<std::string> arguments = words;
  std::vector<std::string> variables = environmentWith(environment);
  pid_t child = 0;
  const int error = ::posix_spawnp(&child, words[0].c_str(), &actions, nullptr, pointersTo(arguments).data(),
                                   pointersTo(variables).data());
  ::posix_spawn_file_actions_destroy(&actions);
  if (error != 0)
    throw std::runtime_error(words[0] + " can't be started");
  const int status = waitFor(child);
  return {status, vestra_test::readFile(out), vestra_test::readFile(err)};
}

bool isInstalled(const std::string& program) {
  const char* path = std::getenv("PATH");
  std::istringstream directories(path == nullptr ? "" : path);
  for (std::string directory; std::getline(directories, directory, ':');) {
    if (::access((directory + "/" + program).c_str(), X_OK) == 0)
      return true;
  }
  return false;
}

}  // namespace vestra::design_tool
