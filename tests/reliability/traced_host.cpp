#include "reliability/traced_host.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/ptrace.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <sys/user.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <csignal>
#include <cstddef>
#include <cstdlib>
#include <fstream>
#include <ostream>
#include <sstream>
#include <system_error>

#include <vestra/testkit/sandbox.h>
#include <boost/filesystem/operations.hpp>
#include <boost/filesystem/path.hpp>

#include "reliability/system_calls.h"
#include "support/files.h"

namespace vestra_test {
namespace {

// A stop at a system call, told from one by a signal.
constexpr int AT_SYSTEM_CALL = SIGTRAP | 0x80;

void succeed(bool success, const char* what) {
  if (!success) {
    throw std::system_error(errno, std::generic_category(), what);
  }
}

// In the child.

void redirect(const std::string& path) {
  const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
  dup2(file, STDOUT_FILENO);
  dup2(file, STDERR_FILENO);
  close(file);
}

void setVariables(const HostStart& start) {
  const std::string supportLibrary = vestra::testkit::supportLibraryPath();
  const std::string loaderPath = supportLibrary.substr(0, supportLibrary.rfind('/'));
  setenv("HOME", start.home.c_str(), 1);
  setenv("LD_LIBRARY_PATH", loaderPath.c_str(), 1);
  setenv("VESTRA_TESTKIT_EXEC_PATH", start.designTool.c_str(), 1);
  setenv("VESTRA_TESTKIT_REGID", "REG-1", 1);
  setenv("VESTRA_TESTKIT_ENVIRONMENT", "a#1#b#2#c#3#d#4#e#5#f#6#date_generated#2026-11-21", 1);
  if (start.projectId) {
    setenv("HOST_PROJECT_ID", start.projectId->c_str(), 1);
  }
  setenv("CALVIX_VESTRA_DEBUG_EXT", start.keepsReportFiles ? "1" : "", 1);
  // The leak checker is a tracer itself, and a process has only one.
  setenv("ASAN_OPTIONS", "detect_leaks=0", 1);
}

[[noreturn]] void becomeHost(const HostStart& start) {
  redirect(start.records + "/output");
  setVariables(start);
  ptrace(PTRACE_TRACEME, 0, nullptr, nullptr);
  // What the test's own parent left open would count among the host's descriptors.
  close_range(3, ~0U, 0);
  execl(start.program.c_str(), start.program.c_str(), (start.records + "/outcome").c_str(),
        start.project.c_str(), std::to_string(start.product).c_str(), nullptr);
  _exit(127);
}

// In the parent.

/// The one process that is watched. Ends with this object.
class Tracee {
 public:
  explicit Tracee(pid_t child) : process(child) {
    wait();
    succeed(ptrace(PTRACE_SETOPTIONS, process, nullptr, PTRACE_O_TRACESYSGOOD | PTRACE_O_EXITKILL) == 0,
            "PTRACE_SETOPTIONS");
  }
  Tracee(const Tracee&) = delete;
  Tracee& operator=(const Tracee&) = delete;
  ~Tracee() {
    if (isAlive()) {
      kill();
    }
  }

  bool isAlive() const { return WIFSTOPPED(status); }
  bool isAtSystemCall() const { return isAlive() && WSTOPSIG(status) == AT_SYSTEM_CALL; }
  bool stoppedItself() const { return isAlive() && WSTOPSIG(status) == SIGSTOP; }
  std::optional<int> endingSignal() const {
    return WIFSIGNALED(status) ? std::optional<int>(WTERMSIG(status)) : std::nullopt;
  }

  void goOnToSystemCall() { goOn(PTRACE_SYSCALL); }
  void goOnToStop() {
    do {
      goOn(PTRACE_CONT);
    } while (isAlive() && !stoppedItself());
  }

  void kill() {
    ::kill(process, SIGKILL);
    wait();
  }

  user_regs_struct registers() const {
    user_regs_struct all{};
    succeed(ptrace(PTRACE_GETREGS, process, nullptr, &all) == 0, "PTRACE_GETREGS");
    return all;
  }

  void setRegister(std::size_t offset, long value) {
    succeed(ptrace(PTRACE_POKEUSER, process, offset, value) == 0, "PTRACE_POKEUSER");
  }

  std::string textAt(unsigned long long address) const {
    std::ifstream memory("/proc/" + std::to_string(process) + "/mem");
    memory.seekg(static_cast<std::streamoff>(address));
    std::string text;
    std::getline(memory, text, '\0');
    return text;
  }

  std::string pathOf(unsigned long long descriptor) const {
    const std::string link = "/proc/" + std::to_string(process) + "/fd/" + std::to_string(descriptor);
    boost::system::error_code error;
    return boost::filesystem::read_symlink(link, error).string();
  }

 private:
  void wait() { succeed(waitpid(process, &status, 0) == process, "waitpid"); }

  // A signal that stopped it on the way to the host is passed on, except the
  // host's own mark and the one that follows `exec`. A process that has ended is not resumed.
  void goOn(__ptrace_request request) {
    if (!isAlive()) {
      return;
    }
    const int signal =
        isAtSystemCall() || stoppedItself() || WSTOPSIG(status) == SIGTRAP ? 0 : WSTOPSIG(status);
    succeed(ptrace(request, process, nullptr, signal) == 0, "ptrace");
    wait();
  }

  pid_t process;
  int status = 0;
};

std::string askForSubject(const Tracee& tracee, const user_regs_struct& registers) {
  switch (subjectOf(static_cast<long>(registers.orig_rax))) {
    case Subject::PATH_FIRST:
      return tracee.textAt(registers.rdi);
    case Subject::PATH_SECOND: {
      const std::string path = tracee.textAt(registers.rsi);
      return path.empty() ? tracee.pathOf(registers.rdi) : path;
    }
    case Subject::DESCRIPTOR:
      return tracee.pathOf(registers.rdi);
    case Subject::NONE:
      break;
  }
  return {};
}

/// `brk` tells a failure by the old end of the heap, which it also gives when it is
/// asked for nothing.
void finishFailingBrk(Tracee& tracee, const user_regs_struct& registers) {
  tracee.setRegister(offsetof(user_regs_struct, rdi), 0);
  tracee.goOnToSystemCall();
  tracee.setRegister(offsetof(user_regs_struct, rdi), static_cast<long>(registers.rdi));
}

void finishFailing(Tracee& tracee, const user_regs_struct& registers, int error) {
  if (registers.orig_rax == SYS_brk) {
    return finishFailingBrk(tracee, registers);
  }
  if (registers.orig_rax != SYS_close) {
    tracee.setRegister(offsetof(user_regs_struct, orig_rax), -1);
  }
  tracee.goOnToSystemCall();
  tracee.setRegister(offsetof(user_regs_struct, rax), -error);
}

void disturb(Tracee& tracee, const user_regs_struct& registers, const Disturbance& disturbance) {
  if (disturbance.kind == Disturbance::FAIL || disturbance.kind == Disturbance::FAIL_TWICE) {
    finishFailing(tracee, registers, disturbance.error);
  } else {
    disturbance.deed();
  }
}

bool isSameCall(const SystemCall& one, const SystemCall& other) {
  return one.number == other.number && one.subject == other.subject;
}

/// Steps from call to call, from one of the host's marks to the other.
void watch(Tracee& tracee, const Disturbance& disturbance, HostEnd& end) {
  for (tracee.goOnToSystemCall(); tracee.isAlive() && !tracee.stoppedItself(); tracee.goOnToSystemCall()) {
    if (!tracee.isAtSystemCall()) {
      continue;
    }
    const user_regs_struct registers = tracee.registers();
    end.calls.push_back({static_cast<long>(registers.orig_rax), askForSubject(tracee, registers)});
    const bool isAgain = end.disturbed && isSameCall(end.calls.back(), end.calls[disturbance.call]);
    const bool isNow = disturbance.kind != Disturbance::WATCH && end.calls.size() - 1 == disturbance.call;
    end.disturbed = end.disturbed || isNow;
    if (isNow && disturbance.kind == Disturbance::KILL) {
      return tracee.kill();
    }
    if (isNow || isAgain) {
      disturb(tracee, registers, disturbance);
      if (isAgain || disturbance.kind != Disturbance::FAIL_TWICE) {
        return tracee.goOnToStop();
      }
      continue;
    }
    tracee.goOnToSystemCall();
  }
}

void readOutcome(const std::string& file, HostEnd& end) {
  std::ifstream in(file);
  std::getline(in, end.outcome);
  in >> end.descriptorsLost;
}

/// What limited the use of the library does not limit the host's account of it.
void liftLimits(pid_t process) {
  for (const auto resource : {RLIMIT_FSIZE, RLIMIT_NOFILE, RLIMIT_AS}) {
    rlimit limit{};
    getrlimit(resource, &limit);
    prlimit(process, resource, &limit, nullptr);
  }
}

/// A host that is killed leaves its shell and the design tool behind. They must not
/// write into what the next host finds.
void waitForOrphans() {
  while (waitpid(-1, nullptr, 0) > 0) {
  }
}

pid_t startHost(const HostStart& start) {
  const pid_t child = fork();
  succeed(child >= 0, "fork");
  if (child == 0) {
    becomeHost(start);
  }
  return child;
}

}  // namespace

std::ostream& operator<<(std::ostream& out, const SystemCall& call) {
  return out << nameOf(call.number) << (call.subject.empty() ? "" : " ") << call.subject;
}

std::optional<std::string> whyNothingIsTraced() {
  const pid_t child = fork();
  if (child == 0) {
    _exit(ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) == 0 ? 0 : 1);
  }
  int status = 0;
  waitpid(child, &status, 0);
  return status == 0 ? std::nullopt : std::optional<std::string>("processes may not be traced here");
}

HostEnd runHost(const HostStart& start, const Disturbance& disturbance) {
  HostEnd end;
  boost::filesystem::remove(start.records + "/outcome");
  succeed(prctl(PR_SET_CHILD_SUBREAPER, 1) == 0, "PR_SET_CHILD_SUBREAPER");
  const pid_t process = startHost(start);
  Tracee tracee(process);
  tracee.goOnToStop();
  start.atBeginning(process);
  if (disturbance.kind == Disturbance::NONE) {
    tracee.goOnToStop();
  } else {
    watch(tracee, disturbance, end);
  }
  if (tracee.isAlive()) {
    liftLimits(process);
    tracee.goOnToStop();
  }
  waitForOrphans();
  end.signal = tracee.endingSignal();
  end.output = readFile(start.records + "/output");
  readOutcome(start.records + "/outcome", end);
  return end;
}

}  // namespace vestra_test
