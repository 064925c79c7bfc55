#include "sandbox/host_process.h"

#include <dlfcn.h>
#include <sys/time.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <exception>
#include <stdexcept>

#include <boost/filesystem.hpp>

#include "intercept/fields.h"
#include "recorder/bytes.h"
#include "recorder/exception.h"
#include "recorder/noted_send.h"
#include "sandbox/assertions.h"
#include "sandbox/support_setup.h"

namespace vestra::testkit {
namespace {

namespace fs = boost::filesystem;

void setOrUnset(const std::string& variable, const std::optional<std::string>& value) {
  const int result = value ? setenv(variable.c_str(), value->c_str(), 1) : unsetenv(variable.c_str());
  if (result != 0) {
    throw std::runtime_error("no environment variable can be called \"" + variable + "\"");
  }
}

void prepend(const std::string& variable, const std::string& value, const char* separator) {
  const char* const old = std::getenv(variable.c_str());
  setOrUnset(variable, old != nullptr && *old != '\0' ? value + separator + old : value);
}

std::string joined(const std::vector<std::string>& names) {
  std::string text;
  for (const std::string& name : names) {
    text += (text.empty() ? "" : ",") + name;
  }
  return text;
}

/// What the programs of a run are told by: see recording.h. A program with the address sanitizer's
/// run time would refuse anything that the loader puts before that.
void setRecordingVariables(const RunSetup& setup, const RunPlace& place) {
  setOrUnset(RECORD_VARIABLE, place.record);
  setOrUnset(PRELOAD_VARIABLE, preloadPath());
  setOrUnset(SUPPORT_VARIABLE, supportLibraryFor(setup.answers));
  setOrUnset(MISSING_VARIABLE, missingEntryPointsOf(setup.answers));
  setOrUnset(NOW_VARIABLE, setup.now ? std::optional(std::to_string(*setup.now)) : std::nullopt);
  prepend("LD_PRELOAD", preloadPath(), ":");
  prepend("ASAN_OPTIONS", "verify_asan_link_order=0", ":");
}

void setVariables(const RunSetup& setup, const RunPlace& place) {
  setOrUnset("CALVIX_VESTRA_DEBUG_EXT", std::nullopt);
  setOrUnset("CALVIX_VESTRA_INTERNAL_TRANSMIT", std::nullopt);
  setOrUnset("HOME", place.directory + "/home");
  setOrUnset("VESTRA_OUTBOX", place.outbox);
  setOrUnset("VESTRA_TESTKIT_CALLS", place.record + "/calls");
  setOrUnset("VESTRA_TESTKIT_EXEC_PATH", toolFor(setup.answers));
  setOrUnset("VESTRA_TESTKIT_REGID", setup.answers.registrationId);
  setOrUnset("VESTRA_TESTKIT_ENVIRONMENT", setup.answers.environment);
  setOrUnset("VESTRA_TESTKIT_NULL", joined(setup.answers.null));
  if (setup.now) {
    setOrUnset("TZ", "UTC0");
  }
  for (const auto& [variable, value] : setup.environment) {
    setOrUnset(variable, value);
  }
  setRecordingVariables(setup, place);
}

void settleIn(const RunSetup& setup, const RunPlace& place) {
  setVariables(setup, place);
  fs::current_path(place.directory);
}

void execute(std::vector<std::string> words) {
  std::vector<char*> arguments;
  for (std::string& word : words) {
    arguments.push_back(word.data());
  }
  arguments.push_back(nullptr);
  execvp(arguments[0], arguments.data());
  throw std::runtime_error(words[0] + ": " + std::strerror(errno));
}

void requireHeldClock(std::time_t now) {
  timeval time{};
  gettimeofday(&time, nullptr);
  if (std::time(nullptr) != now || time.tv_sec != now) {
    Dl_info info{};
    dladdr(dlsym(RTLD_DEFAULT, "time"), &info);
    throw std::runtime_error("setNow has no effect, as another object tells this process the time: " +
                             std::string(info.dli_fname) +
                             "; take it out of LD_PRELOAD or out of the program");
  }
}

void recordFailure(const RunPlace& place, const std::exception& failure) {
  writeBytes(place.record + "/failure", failure.what());
}

}  // namespace

bool callSend(SendFunction send, const char* projectDir, Oza::Vestra::ProductType product,
              const NotedSend& noted) {
  try {
    return send(projectDir, product);
  } catch (...) {
    const Exception exception = caughtException();
    noted.noteOutcome("threw", intercept::joinedFields(fieldsOf(exception)));
    throw;
  }
}

void beAHost(const RunSetup& setup, const RunPlace& place, StartingGate& gate,
             const std::function<bool()>& code) {
  try {
    settleIn(setup, place);
    const char* supportLibrary = std::getenv(SUPPORT_VARIABLE);
    openSupportLibrary(supportLibrary != nullptr ? supportLibrary : "");
    beginRecording();
    if (setup.now) {
      requireHeldClock(*setup.now);
    }
  } catch (const std::exception& failure) {
    recordFailure(place, failure);
    return;
  }
  watchAssertions();
  gate.await();
  try {
    writeBytes(place.record + "/answer", code() ? "true" : "false");
  } catch (...) {
    note("exception", fieldsOf(caughtException()));
  }
}

void beAProgram(const RunSetup& setup, const RunPlace& place, const std::vector<std::string>& words) {
  try {
    settleIn(setup, place);
    beginRecording();
    execute(words);
  } catch (const std::exception& failure) {
    recordFailure(place, failure);
  }
}

void refuseFailureIn(const RunPlace& place) {
  if (const auto failure = bytesOf(place.record + "/failure")) {
    throw std::runtime_error("the sandbox cannot run the host: " + *failure);
  }
}

}  // namespace vestra::testkit
