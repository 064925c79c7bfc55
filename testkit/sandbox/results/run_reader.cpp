#include "sandbox/results/run_reader.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <map>
#include <tuple>
#include <utility>

#include "intercept/fields.h"
#include "recorder/bytes.h"
#include "recorder/exception.h"
#include "recorder/recording.h"
#include "sandbox/assertions.h"
#include "sandbox/host_process.h"
#include "sandbox/results/files_left.h"
#include "sandbox/results/report_reader.h"
#include "sandbox/results/script_items.h"
#include "sandbox/results/shell_record.h"

namespace vestra::testkit {
namespace {

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

template <typename Number>
Number numberFrom(const std::string& text) {
  return static_cast<Number>(std::stoul(text));
}

/// A number of the recorder, whose calls count on in each process.
struct CallNumber {
  explicit CallNumber(const std::string& text)
      : process(text.substr(0, text.find('-'))), count(std::stoul(text.substr(process.size() + 1))) {}

  std::string process;
  unsigned long count;
};

/// What the host asked of the library.
class Calls {
 public:
  explicit Calls(const std::string& record) {
    readSends(intercept::fieldsIn(bytesOf(record + "/sends").value_or("")));
    readAdded(intercept::fieldsIn(bytesOf(record + "/added").value_or("")));
  }

  std::vector<AddedItem> added;
  std::vector<Send> sends;

 private:
  // Processes and threads of the host may call `send` at the same time.
  void readSends(const std::vector<std::string>& fields) {
    constexpr std::size_t FIELDS = 5;
    std::map<std::string, std::size_t> places;
    for (std::size_t i = 0; i + FIELDS <= fields.size(); i += FIELDS) {
      const auto [place, isNew] = places.emplace(fields[i], sends.size());
      if (isNew) {
        sends.push_back({fields[i + 1], numberFrom<Oza::Vestra::ProductType>(fields[i + 2]), std::nullopt});
        const CallNumber number(fields[i]);
        lastSends[number.process] = std::max(lastSends[number.process], number.count);
      }
      const std::string& outcome = fields[i + 3];
      if (outcome == "threw") {
        sends[place->second].exception = exceptionFrom(intercept::fieldsIn(fields[i + 4]));
      } else if (outcome != "begun") {
        sends[place->second].answer = outcome == "true";
      }
    }
  }

  void readAdded(std::vector<std::string> fields) {
    constexpr std::size_t FIELDS = 4;
    for (std::size_t i = 0; i + FIELDS <= fields.size(); i += FIELDS) {
      const CallNumber number(fields[i]);
      added.push_back({numberFrom<Oza::Vestra::SectionType>(fields[i + 1]), std::move(fields[i + 2]),
                       std::move(fields[i + 3]), number.count < lastSends[number.process]});
    }
  }

  /// By process.
  std::map<std::string, unsigned long> lastSends;
};

std::vector<std::string> unsoundnessIn(const std::string& record) {
  std::vector<std::string> sentences;
  const auto fields = intercept::fieldsIn(bytesOf(record + "/" + intercept::UNOBSERVED_RECORD).value_or(""));
  for (std::size_t i = 0; i + 2 <= fields.size(); i += 2) {
    sentences.push_back(fields[i] + " " + fields[i + 1]);
  }
  return sentences;
}

/// Reads what one run left, part by part.
class RunReader {
 public:
  RunReader(const RunPlace& thePlace, HostRun& theRun) : place(thePlace), run(theRun) {}

  void readAll() {
    readCalls();
    readOutcome();
    readShell();
    run.reports = reportsIn(place.outbox);
    run.supportCalls = linesOf(bytesOf(place.record + "/calls").value_or(""));
    readFiles();
    readScript();
    run.writtenItems = itemsWrittenIn(run.script, run.added);
    run.failedAssertions = failAsRecorded(place.record, run.output);
  }

 private:
  void readCalls() {
    Calls calls(place.record);
    run.added = std::move(calls.added);
    run.sends = std::move(calls.sends);
  }

  void readOutcome() {
    if (const auto answer = bytesOf(place.record + "/answer")) {
      run.answer = *answer == "true";
    } else if (const auto exception = bytesOf(place.record + "/exception")) {
      run.exception = exceptionFrom(intercept::fieldsIn(*exception));
    } else if (place.isProgram && run.exitStatus && !run.sends.empty()) {
      run.answer = run.sends.back().answer;
    }
  }

  void readShell() {
    readShellRecord(place.record, run);
    run.output = bytesOf(place.record + "/printed.out").value_or("");
    run.errorOutput = bytesOf(place.record + "/printed.err").value_or("");
  }

  std::string vestraDirectory() const {
    return (run.sends.empty() ? place.directory + "/project" : run.sends.back().projectDirectory) +
           "/vestra/";
  }

  std::string inVestraDirectory(const std::string& kelvos, const std::string& tavlos) const {
    const bool isSimulator = run.sends.back().product <= Oza::Vestra::KELVO_ALT;
    return vestraDirectory() + (isSimulator ? kelvos : tavlos);
  }

  void readScript() {
    if (!run.toolRuns.empty()) {
      run.script = run.toolRuns.back().script;
      run.rulesFile = run.toolRuns.back().rulesFile;
    } else if (!run.sends.empty()) {
      run.script = scriptOfThisRun(inVestraDirectory("kelvo_vestra.tcl", "tavlo_vestra.tcl"));
      run.rulesFile = rulesOfThisRun(
          inVestraDirectory("usage_statistics_ext_kelvo.wdm", "usage_statistics_ext_tavlo.wdm"));
    }
  }

  // An earlier run's script may still lie there. A `send` that gets as far as writing its own has
  // asked for the registration identifier.
  std::string scriptOfThisRun(const std::string& path) const {
    const bool isWritten =
        std::any_of(run.supportCalls.begin(), run.supportCalls.end(),
                    [](const auto& call) { return call.rfind("oza_vestra_regid(", 0) == 0; });
    return isWritten && isNotOlder(path, place.record + "/started") ? bytesOf(path).value_or("") : "";
  }

  // A `send` that can use the identity file leaves equal rules as they are, whatever their time.
  std::string rulesOfThisRun(const std::string& path) const {
    return access(run.identityFile.c_str(), R_OK | W_OK) == 0 ? bytesOf(path).value_or("") : "";
  }

  void readFiles() {
    run.directory = place.directory;
    run.identityFile = vestraDirectory() + ".kelvo_vestrra.info";
    if (const auto text = bytesOf(settingsFileIn(place.directory))) {
      run.settings = parseSettings(*text);
    }
    if (const auto text = bytesOf(run.identityFile)) {
      run.identity = parseIdentity(*text);
    }
  }

  const RunPlace& place;
  HostRun& run;
};

}  // namespace

std::string settingsFileIn(const std::string& sandboxDirectory) {
  return sandboxDirectory + "/home/.Calvix/Common/2018.2/vestra";
}

std::string identityFileIn(const std::string& sandboxDirectory) {
  return sandboxDirectory + "/project/vestra/.kelvo_vestrra.info";
}

HostRun runIn(const RunPlace& place, const ProcessEnd& end) {
  refuseFailureIn(place);
  HostRun run;
  run.signal = end.signal;
  run.exitStatus = end.exitStatus;
  run.timedOut = end.timedOut;
  run.unsoundness = unsoundnessIn(place.record);
  run.outlivingProcesses = end.outliving;
  RunReader(place, run).readAll();
  return run;
}

}  // namespace vestra::testkit
