#include "sandbox/results/run_reader.h"

#include <sys/stat.h>

#include <tuple>
#include <utility>

#include "recorder/bytes.h"
#include "recorder/command_line.h"
#include "recorder/exception.h"
#include "recorder/fields.h"
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

std::vector<AddedItem> addedIn(const std::string& record) {
  std::vector<AddedItem> added;
  std::vector<std::string> fields = fieldsIn(bytesOf(record + "/added").value_or(""));
  for (std::size_t i = 0; i + 3 <= fields.size(); i += 3) {
    added.push_back({numberFrom<Oza::Vestra::SectionType>(fields[i]), std::move(fields[i + 1]),
                     std::move(fields[i + 2])});
  }
  return added;
}

std::vector<Send> sendsIn(const std::string& record) {
  std::vector<Send> sends;
  const std::vector<std::string> fields = fieldsIn(bytesOf(record + "/sends").value_or(""));
  for (std::size_t i = 0; i + 3 <= fields.size(); i += 3) {
    const std::string& outcome = fields[i + 2];
    if (outcome == "begun") {
      sends.push_back({fields[i], numberFrom<Oza::Vestra::ProductType>(fields[i + 1]), std::nullopt});
    } else if (outcome != "threw") {
      sends.back().answer = outcome == "true";
    }
  }
  return sends;
}

/// Reads what one run left, part by part.
class RunReader {
 public:
  RunReader(const RunPlace& thePlace, HostRun& theRun) : place(thePlace), run(theRun) {}

  void readAll(std::chrono::steady_clock::time_point deadline) {
    readCalls();
    readOutcome();
    readShell();
    run.reports = reportsIn(place.outbox);
    run.supportCalls = linesOf(bytesOf(place.record + "/calls").value_or(""));
    readScript();
    readFiles();
    const auto items = itemsWrittenIn(run.script, run.added, deadline);
    run.timedOut = run.timedOut || !items;
    run.writtenItems = items.value_or(std::vector<Item>());
    run.failedAssertions = failAsRecorded(place.record, run.output);
  }

 private:
  void readCalls() {
    run.added = addedIn(place.record);
    run.sends = sendsIn(place.record);
  }

  void readOutcome() {
    if (const auto answer = bytesOf(place.record + "/answer")) {
      run.answer = *answer == "true";
    } else if (const auto exception = bytesOf(place.record + "/exception")) {
      run.exception = exceptionFrom(fieldsIn(*exception));
    } else if (place.isProgram && run.exitStatus && !run.sends.empty()) {
      run.answer = run.sends.back().answer;
    }
  }

  void readShell() {
    ShellRecord shell = shellRecordIn(place.record, bytesOf(place.record + "/printed.out").value_or(""),
                                      bytesOf(place.record + "/printed.err").value_or(""));
    run.toolRuns = std::move(shell.toolRuns);
    run.hostCommands = std::move(shell.hostCommands);
    run.output = std::move(shell.output);
    run.errorOutput = std::move(shell.errorOutput);
  }

  std::string vestraDirectory() const {
    return (run.sends.empty() ? place.directory + "/project" : run.sends.back().projectDirectory) +
           "/vestra/";
  }

  void readScript() {
    if (!run.toolRuns.empty()) {
      run.script = run.toolRuns.back().script;
      run.rulesFile = run.toolRuns.back().rulesFile;
    } else {
      run.script = newest({"kelvo_vestra.tcl", "tavlo_vestra.tcl"});
      run.rulesFile = newest({"usage_statistics_ext_kelvo.wdm", "usage_statistics_ext_tavlo.wdm"});
    }
  }

  // What an earlier run left lies there still; this run may not have come so far.
  std::string newest(const std::vector<std::string>& names) const {
    std::string found;
    for (const std::string& name : names) {
      const std::string path = vestraDirectory() + name;
      if (isNotOlder(path, found.empty() ? place.record + "/started" : found)) {
        found = path;
      }
    }
    return found.empty() ? "" : bytesOf(found).value_or("");
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

HostRun runIn(const RunPlace& place, const ProcessEnd& end, std::chrono::steady_clock::time_point deadline) {
  refuseFailureIn(place);
  HostRun run;
  run.signal = end.signal;
  run.exitStatus = end.exitStatus;
  run.timedOut = end.timedOut;
  RunReader(place, run).readAll(deadline);
  return run;
}

}  // namespace vestra::testkit
