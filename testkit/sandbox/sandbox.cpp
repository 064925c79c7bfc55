#include <vestra/testkit/sandbox.h>

#include <cxxabi.h>
#include <dlfcn.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <exception>
#include <stdexcept>
#include <tuple>
#include <typeinfo>

#include <boost/filesystem.hpp>

#include "bytes.h"
#include "files_left.h"
#include "forked_process.h"
#include "report_reader.h"
#include "script_items.h"
#include "shell_recorder.h"

namespace vestra::testkit {
namespace {

namespace fs = boost::filesystem;

constexpr std::chrono::seconds A_DAY_AND_MORE{86401};

/// Ends every waiting process's wait at one moment.
class StartingGate {
 public:
  StartingGate() {
    if (pipe(ends.data()) != 0) {
      throw std::runtime_error("the sandbox cannot make a pipe");
    }
  }
  StartingGate(const StartingGate&) = delete;
  StartingGate& operator=(const StartingGate&) = delete;
  ~StartingGate() {
    open();
    close(ends[0]);
  }

  /// In the process that starts the others.
  void open() {
    if (ends[1] >= 0) {
      close(ends[1]);
      ends[1] = -1;
    }
  }

  /// In each of the others.
  void await() {
    open();
    char nothing = 0;
    while (read(ends[0], &nothing, 1) < 0) {
    }
  }

 private:
  std::array<int, 2> ends{-1, -1};
};

std::string readableName(const std::type_info& type) {
  int status = 0;
  char* name = abi::__cxa_demangle(type.name(), nullptr, nullptr, &status);
  const std::string readable = status == 0 ? name : type.name();
  std::free(name);
  return readable;
}

void setOrUnset(const std::string& variable, const std::optional<std::string>& value) {
  const int result = value ? setenv(variable.c_str(), value->c_str(), 1) : unsetenv(variable.c_str());
  if (result != 0) {
    throw std::runtime_error("no environment variable can be called \"" + variable + "\"");
  }
}

/// Whether there is a file that was written at the time of another one or later.
bool isNotOlder(const std::string& path, const std::string& other) {
  struct stat status {};
  struct stat otherStatus {};
  if (stat(path.c_str(), &status) != 0 || stat(other.c_str(), &otherStatus) != 0) {
    return false;
  }
  const timespec& time = status.st_mtim;
  const timespec& otherTime = otherStatus.st_mtim;
  return std::tie(time.tv_sec, time.tv_nsec) >= std::tie(otherTime.tv_sec, otherTime.tv_nsec);
}

std::string joined(const std::vector<std::string>& names) {
  std::string text;
  for (const std::string& name : names) {
    text += (text.empty() ? "" : ",") + name;
  }
  return text;
}

}  // namespace

class Sandbox::Implementation {
 public:
  Implementation()
      : directory(
            (fs::canonical(fs::temp_directory_path()) / fs::unique_path("vestra-%%%%%%%%%%%%")).string()) {
    for (const char* name : {"", "/home", "/project", "/outbox", "/runs"}) {
      fs::create_directory(directory + name);
    }
  }
  Implementation(const Implementation&) = delete;
  Implementation& operator=(const Implementation&) = delete;
  ~Implementation() {
    boost::system::error_code ignored;
    fs::remove_all(directory, ignored);
  }

  std::vector<HostRun> runTogether(int count, const std::function<bool(int)>& code) {
    StartingGate gate;
    std::vector<std::string> names;
    std::vector<std::unique_ptr<ForkedProcess>> processes;
    for (int number = 0; number < count; ++number) {
      const std::string name = nextRunName();
      names.push_back(name);
      processes.push_back(std::make_unique<ForkedProcess>(
          recordOf(name) + "/printed", [&] { beAHost(name, gate, [&] { return code(number); }); }));
    }
    gate.open();
    const auto deadline = std::chrono::steady_clock::now() + timeLimit;
    std::vector<ProcessEnd> ends;
    for (const auto& process : processes) {
      ends.push_back(process->wait(deadline));
    }
    std::vector<HostRun> runs;
    for (std::size_t i = 0; i < names.size(); ++i) {
      runs.push_back(collect(names[i], ends[i]));
    }
    return runs;
  }

  std::string settingsFile() const { return directory + "/home/.Calvix/Common/2018.2/vestra"; }
  std::string identityFile() const { return directory + "/project/vestra/.kelvo_vestrra.info"; }

  std::string directory;
  SupportAnswers answers;
  std::map<std::string, std::optional<std::string>> environment;
  std::chrono::milliseconds timeLimit = std::chrono::seconds(60);

 private:
  std::string nextRunName() {
    ++runCount;
    const std::string name = "run-" + std::to_string(runCount);
    fs::create_directory(recordOf(name));
    writeBytes(recordOf(name) + "/started", "");
    return name;
  }

  std::string recordOf(const std::string& name) const { return directory + "/runs/" + name; }
  std::string outboxOf(const std::string& name) const { return directory + "/outbox/" + name; }

  // In the host's process.

  void beAHost(const std::string& name, StartingGate& gate, const std::function<bool()>& code) const {
    try {
      settleIn(name);
    } catch (const std::exception& failure) {
      writeBytes(recordOf(name) + "/failure", failure.what());
      return;
    }
    gate.await();
    try {
      writeBytes(recordOf(name) + "/answer", code() ? "true" : "false");
    } catch (const std::exception& exception) {
      recordException(name, typeid(exception), exception.what());
    } catch (...) {
      recordException(name, *abi::__cxa_current_exception_type(), "");
    }
  }

  void settleIn(const std::string& name) const {
    setVariables(name);
    fs::current_path(directory);
    // The loader gives a library that is open already to whoever asks for its name.
    if (dlopen(supportLibraryPath().c_str(), RTLD_LAZY) == nullptr) {
      throw std::runtime_error(dlerror());
    }
    recordShellIn(recordOf(name));
  }

  void setVariables(const std::string& name) const {
    setOrUnset("CALVIX_VESTRA_DEBUG_EXT", std::nullopt);
    setOrUnset("CALVIX_VESTRA_INTERNAL_TRANSMIT", std::nullopt);
    setOrUnset("HOME", directory + "/home");
    setOrUnset("VESTRA_OUTBOX", outboxOf(name));
    setOrUnset("VESTRA_TESTKIT_ANSWERS", std::nullopt);
    setOrUnset("VESTRA_TESTKIT_CALLS", recordOf(name) + "/calls");
    setOrUnset("VESTRA_TESTKIT_EXEC_PATH", answers.execPath.value_or(designToolPath()));
    setOrUnset("VESTRA_TESTKIT_REGID", answers.registrationId);
    setOrUnset("VESTRA_TESTKIT_ENVIRONMENT", answers.environment);
    setOrUnset("VESTRA_TESTKIT_NULL", joined(answers.null));
    for (const auto& [variable, value] : environment) {
      setOrUnset(variable, value);
    }
  }

  void recordException(const std::string& name, const std::type_info& type, const std::string& text) const {
    writeBytes(recordOf(name) + "/exception", readableName(type) + "\n" + text);
  }

  // Afterwards, in the process that owns the sandbox.

  HostRun collect(const std::string& name, const ProcessEnd& end) const {
    const std::string record = recordOf(name);
    if (const auto failure = bytesOf(record + "/failure")) {
      throw std::runtime_error("the sandbox cannot run the host: " + *failure);
    }
    HostRun run;
    run.signal = end.signal;
    run.exitStatus = end.exitStatus;
    run.timedOut = end.timedOut;
    collectOutcome(record, run);
    collectShell(record, run);
    run.reports = reportsIn(outboxOf(name));
    run.supportCalls = linesOf(bytesOf(record + "/calls").value_or(""));
    collectFiles(record, run);
    return run;
  }

  void collectOutcome(const std::string& record, HostRun& run) const {
    if (const auto answer = bytesOf(record + "/answer")) {
      run.answer = *answer == "true";
    }
    if (const auto exception = bytesOf(record + "/exception")) {
      const std::size_t lineEnd = exception->find('\n');
      run.exception = Exception{exception->substr(0, lineEnd), exception->substr(lineEnd + 1)};
    }
  }

  void collectShell(const std::string& record, HostRun& run) const {
    ShellRecord shell = shellRecordIn(record, bytesOf(record + "/printed.out").value_or(""),
                                      bytesOf(record + "/printed.err").value_or(""));
    run.toolRuns = std::move(shell.toolRuns);
    run.output = std::move(shell.output);
    run.errorOutput = std::move(shell.errorOutput);
  }

  void collectFiles(const std::string& record, HostRun& run) const {
    if (!run.toolRuns.empty()) {
      run.script = run.toolRuns.back().script;
      run.rulesFile = run.toolRuns.back().rulesFile;
    } else if (const auto script = scriptWrittenAfter(record + "/started")) {
      run.script = bytesOf(*script).value_or("");
      run.rulesFile = bytesOf(rulesFileBeside(*script)).value_or("");
    }
    run.writtenItems = itemsWrittenIn(run.script);
    if (const auto text = bytesOf(settingsFile())) {
      run.settings = parseSettings(*text);
    }
    if (const auto text = bytesOf(identityFile())) {
      run.identity = parseIdentity(*text);
    }
  }

  // What an earlier run left lies there still; this run may not have come so far.
  std::optional<std::string> scriptWrittenAfter(const std::string& marker) const {
    std::optional<std::string> newest;
    for (const char* name : {"kelvo_vestra.tcl", "tavlo_vestra.tcl"}) {
      const std::string script = directory + "/project/vestra/" + name;
      if (isNotOlder(script, newest.value_or(marker))) {
        newest = script;
      }
    }
    return newest;
  }

  int runCount = 0;
};

Sandbox::Sandbox() : implementation(std::make_unique<Implementation>()) {}

Sandbox::~Sandbox() = default;

HostRun Sandbox::run(Oza::Vestra::ProductType product, const std::function<void()>& host) {
  return runProcess([&] {
    host();
    return Oza::Vestra::send(project().c_str(), product);
  });
}

HostRun Sandbox::runProcess(const std::function<bool()>& code) {
  return implementation->runTogether(1, [&](int) { return code(); }).front();
}

std::vector<HostRun> Sandbox::runTogether(int count, const std::function<bool(int)>& code) {
  return implementation->runTogether(count, code);
}

void Sandbox::age(std::chrono::seconds by) {
  if (const auto text = bytesOf(identityFile())) {
    writeBytes(identityFile(), agedIdentity(*text, by.count()));
  }
}

void Sandbox::ageUntilDue() { age(A_DAY_AND_MORE); }

void Sandbox::setSupportAnswers(SupportAnswers answers) { implementation->answers = std::move(answers); }

void Sandbox::setEnvironment(const std::string& name, const std::optional<std::string>& value) {
  implementation->environment[name] = value;
}

void Sandbox::setTimeLimit(std::chrono::milliseconds limit) { implementation->timeLimit = limit; }

const std::string& Sandbox::directory() const { return implementation->directory; }

std::string Sandbox::home() const { return directory() + "/home"; }

std::string Sandbox::project() const { return directory() + "/project"; }

std::string Sandbox::outbox() const { return directory() + "/outbox"; }

std::string Sandbox::settingsFile() const { return implementation->settingsFile(); }

std::string Sandbox::identityFile() const { return implementation->identityFile(); }

}  // namespace vestra::testkit
