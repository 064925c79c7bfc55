#include <vestra/testkit/sandbox.h>

#include <cstdlib>
#include <iostream>
#include <stdexcept>
#include <utility>

#include <boost/filesystem.hpp>

#include "recorder/bytes.h"
#include "sandbox/assertions.h"
#include "sandbox/forked_process.h"
#include "sandbox/host_process.h"
#include "sandbox/parent_process.h"
#include "sandbox/results/files_left.h"
#include "sandbox/results/reasons.h"
#include "sandbox/results/run_reader.h"
#include "sandbox/run_setup.h"
#include "sandbox/starting_gate.h"
#include "sandbox/temporary_tree.h"

namespace vestra::testkit {
namespace {

namespace fs = boost::filesystem;

constexpr std::chrono::seconds A_DAY_AND_MORE{86401};

bool keepsAll() {
  const char* const value = std::getenv("VESTRA_TESTKIT_KEEP");
  return value != nullptr && *value != '\0';
}

void writeBelowNewDirectories(const std::string& path, const std::string& bytes) {
  fs::create_directories(fs::path(path).parent_path());
  writeBytes(path, bytes);
}

/// What a program is called for `execvp` in another directory.
std::string fromEverywhere(const std::string& program) {
  return program.find('/') == std::string::npos ? program : fs::absolute(program).string();
}

}  // namespace

class Sandbox::Implementation {
 public:
  Implementation() {
    requireTestKitFirst();
    for (const char* name : {"/home", "/project", "/outbox", "/runs"}) {
      fs::create_directory(directory() + name);
    }
    if (keepsAll()) {
      tree.keep();
    }
  }
  Implementation(const Implementation&) = delete;
  Implementation& operator=(const Implementation&) = delete;
  ~Implementation() {
    const bool isFailed = hasCurrentTestFailed() && !keepsAll();
    if (isFailed) {
      tree.keepForAWhile();
    }
    if (isFailed || keepsAll()) {
      std::cerr << "vestra::testkit keeps " << directory() << std::endl;
    }
  }

  std::vector<HostRun> runTogether(int count, const std::function<bool(int)>& code) {
    requireFreshProcess();
    StartingGate gate;
    const std::vector<RunPlace> places = nextPlaces(count);
    std::vector<std::unique_ptr<ForkedProcess>> processes;
    for (const RunPlace& place : places) {
      const int number = static_cast<int>(&place - places.data());
      processes.push_back(start(place, [&] { beAHost(setup, place, gate, [&] { return code(number); }); }));
    }
    gate.open();
    return finish(places, processes);
  }

  HostRun runProgram(std::vector<std::string> words) {
    if (words.empty()) {
      throw std::runtime_error("the sandbox cannot run a program without a name");
    }
    words[0] = fromEverywhere(words[0]);
    const std::vector<RunPlace> places = nextPlaces(1, true);
    std::vector<std::unique_ptr<ForkedProcess>> processes;
    processes.push_back(start(places[0], [&] { beAProgram(setup, places[0], words); }));
    return finish(places, processes).front();
  }

  const std::string& directory() const { return tree.path(); }

  RunSetup setup;

 private:
  std::vector<RunPlace> nextPlaces(int count, bool areForPrograms = false) {
    std::vector<RunPlace> places;
    for (int i = 0; i < count; ++i) {
      const std::string name = "run-" + std::to_string(++runCount);
      places.push_back(
          {directory(), directory() + "/runs/" + name, directory() + "/outbox/" + name, areForPrograms});
      fs::create_directory(places.back().record);
      writeBytes(places.back().record + "/started", "");
    }
    return places;
  }

  std::unique_ptr<ForkedProcess> start(const RunPlace& place, const std::function<void()>& body) const {
    return std::make_unique<ForkedProcess>(place.record + "/printed", setup.timeLimit, body);
  }

  std::vector<HostRun> finish(const std::vector<RunPlace>& places,
                              const std::vector<std::unique_ptr<ForkedProcess>>& processes) const {
    std::vector<ProcessEnd> ends;
    for (const auto& process : processes) {
      ends.push_back(process->wait());
    }
    std::vector<HostRun> runs;
    for (std::size_t i = 0; i < places.size(); ++i) {
      runs.push_back(runIn(places[i], ends[i]));
    }
    return runs;
  }

  TemporaryTree tree;
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

HostRun Sandbox::runProgram(const std::vector<std::string>& words) {
  return implementation->runProgram(words);
}

void Sandbox::age(std::chrono::seconds by) {
  if (const auto text = bytesOf(identityFile())) {
    writeBytes(identityFile(), agedIdentity(*text, by.count()));
  }
}

void Sandbox::ageUntilDue() { age(A_DAY_AND_MORE); }

void Sandbox::setSupportAnswers(SupportAnswers answers) {
  implementation->setup.answers = std::move(answers);
}

void Sandbox::setEnvironment(const std::string& name, const std::optional<std::string>& value) {
  implementation->setup.environment[name] = value;
}

void Sandbox::setTimeLimit(std::chrono::milliseconds limit) { implementation->setup.timeLimit = limit; }

void Sandbox::setNow(std::time_t now) { implementation->setup.now = now; }

// As the library would have written both files after drawing these.
void Sandbox::setIdentifiers(const std::string& installation, const std::string& project) {
  writeBelowNewDirectories(settingsFile(), "RandomID=" + installation + "\n");
  const auto identity = bytesOf(identityFile());
  writeBelowNewDirectories(identityFile(), identityWithProject(identity.value_or("0\n0\n1\n0\n"), project));
}

std::string Sandbox::withoutDirectory(const std::string& text) const {
  return testkit::withoutDirectory(text, directory());
}

const std::string& Sandbox::directory() const { return implementation->directory(); }

std::string Sandbox::home() const { return directory() + "/home"; }

std::string Sandbox::project() const { return directory() + "/project"; }

std::string Sandbox::outbox() const { return directory() + "/outbox"; }

std::string Sandbox::settingsFile() const { return settingsFileIn(directory()); }

std::string Sandbox::identityFile() const { return identityFileIn(directory()); }

}  // namespace vestra::testkit
