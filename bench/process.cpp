#include "process.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <iterator>
#include <sstream>
#include <stdexcept>
#include <system_error>

namespace vestra_bench {
namespace {

std::vector<char*> argumentsOf(const Command& command) {
  std::vector<char*> arguments;
  for (const std::string& word : command) {
    arguments.push_back(const_cast<char*>(word.c_str()));
  }
  arguments.push_back(nullptr);
  return arguments;
}

pid_t start(const Command& command, const posix_spawn_file_actions_t* actions) {
  pid_t process = -1;
  const std::vector<char*> arguments = argumentsOf(command);
  const int error = posix_spawnp(&process, arguments[0], actions, nullptr, arguments.data(), environ);
  if (error != 0) {
    throw std::system_error(error, std::generic_category(), command[0]);
  }
  return process;
}

void waitFor(pid_t process, const Command& command) {
  int status = 0;
  if (waitpid(process, &status, 0) != process || status != 0) {
    throw std::runtime_error(command[0] + " failed, with wait status " + std::to_string(status));
  }
}

std::string readToEnd(int descriptor) {
  std::string text;
  std::array<char, 65536> part{};
  for (ssize_t length = read(descriptor, part.data(), part.size()); length > 0;
       length = read(descriptor, part.data(), part.size())) {
    text.append(part.data(), static_cast<std::size_t>(length));
  }
  return text;
}

}  // namespace

std::string outputOf(const Command& command) {
  std::array<int, 2> ends{};
  if (pipe2(ends.data(), O_CLOEXEC) != 0) {
    throw std::system_error(errno, std::generic_category(), "pipe2");
  }
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
  const pid_t process = start(command, &actions);
  posix_spawn_file_actions_destroy(&actions);
  close(ends[1]);
  std::string output = readToEnd(ends[0]);
  close(ends[0]);
  waitFor(process, command);
  return output;
}

std::vector<double> numbersOf(const Command& command) {
  std::istringstream output(outputOf(command));
  return {std::istream_iterator<double>(output), std::istream_iterator<double>()};
}

double lifetimeOf(const Command& command) {
  const auto begin = std::chrono::steady_clock::now();
  waitFor(start(command, nullptr), command);
  const std::chrono::duration<double, std::nano> taken = std::chrono::steady_clock::now() - begin;
  return taken.count();
}

}  // namespace vestra_bench
