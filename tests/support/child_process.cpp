#include "support/child_process.h"

#include <grp.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstddef>
#include <exception>
#include <stdexcept>
#include <system_error>
#include <vector>

// There in a build that measures coverage: what a process counts is written at its end,
// which _exit leaves out.
// NOLINTNEXTLINE(bugprone-reserved-identifier): the name is the compiler's.
extern "C" void __gcov_dump() __attribute__((weak));

namespace vestra_test {
namespace {

constexpr unsigned int NOBODY = 65534;
constexpr int DONE = 0;
constexpr int BROKEN = 1;

void succeed(bool success, const char* what) {
  if (!success) {
    throw std::system_error(errno, std::generic_category(), what);
  }
}

void becomeNobody() {
  succeed(setgroups(0, nullptr) == 0, "setgroups");
  succeed(setgid(NOBODY) == 0, "setgid");
  succeed(setuid(NOBODY) == 0, "setuid");
}

std::string textOf(const Observation& observe) {
  try {
    return observe();
  } catch (const std::exception& error) {
    return std::string("exception: ") + error.what();
  }
}

void writeCoverage() {
  if (__gcov_dump != nullptr) {
    __gcov_dump();
  }
}

[[noreturn]] void runChild(int out, const Observation& observe) {
  const std::string text = textOf(observe);
  writeCoverage();
  const ssize_t written = write(out, text.data(), text.size());
  _exit(written == static_cast<ssize_t>(text.size()) ? DONE : BROKEN);
}

std::string readToEnd(int in) {
  std::string text;
  std::array<char, 4096> buffer{};
  ssize_t count = 0;
  while ((count = read(in, buffer.data(), buffer.size())) > 0) {
    text.append(buffer.data(), static_cast<std::size_t>(count));
  }
  return text;
}

}  // namespace

std::string inChildProcess(const Observation& observe) {
  std::array<int, 2> channel{};
  succeed(pipe(channel.data()) == 0, "pipe");
  const pid_t child = fork();
  succeed(child != -1, "fork");
  if (child == 0) {
    runChild(channel[1], observe);
  }
  close(channel[1]);
  const std::string text = readToEnd(channel[0]);
  close(channel[0]);
  int status = 0;
  waitpid(child, &status, 0);
  if (status != 0) {
    throw std::runtime_error("the child ended with wait status " + std::to_string(status));
  }
  return text;
}

std::string asOrdinaryUser(const Observation& observe) {
  if (geteuid() != 0) {
    return textOf(observe);
  }
  return inChildProcess([&] {
    becomeNobody();
    return observe();
  });
}

std::string inRootDirectory(const std::string& directory, const Observation& observe) {
  return inChildProcess([&] {
    succeed(chroot(directory.c_str()) == 0, "chroot");
    succeed(chdir("/") == 0, "chdir");
    return observe();
  });
}

void failSystemCall(long number, int error, std::optional<std::uint32_t> third) {
  const auto wanted = static_cast<std::uint32_t>(number);
  const auto answer = SECCOMP_RET_ERRNO | static_cast<std::uint32_t>(error);
  std::vector<sock_filter> lines = {
      BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
      BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, wanted, 1, 0),
      BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
  };
  if (third) {
    lines.insert(lines.end(), {BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, args[2])),
                               BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, *third, 1, 0),
                               BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW)});
  }
  lines.push_back(BPF_STMT(BPF_RET | BPF_K, answer));
  const sock_fprog filter = {static_cast<unsigned short>(lines.size()), lines.data()};
  if (prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0 ||
      prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &filter) != 0) {
    throw std::runtime_error("no system call can be made to fail here");
  }
}

}  // namespace vestra_test
