#include "sandbox/results/shell_record.h"

#include <map>
#include <vector>

#include "intercept/fields.h"
#include "recorder/bytes.h"
#include "recorder/recording.h"

namespace vestra::testkit {
namespace {

using Fields = std::vector<std::string>;

Fields fieldsOfRecord(const std::string& path) { return intercept::fieldsIn(bytesOf(path).value_or("")); }

struct End {
  std::optional<int> status;
  std::string log;
};

std::map<std::string, End> endsIn(const std::string& directory) {
  constexpr std::size_t FIELDS = 3;
  const Fields fields = fieldsOfRecord(directory + "/" + ENDED_RECORD);
  std::map<std::string, End> ends;
  for (std::size_t i = 0; i + FIELDS <= fields.size(); i += FIELDS) {
    ends[fields[i]] = {std::stoi(fields[i + 1]), fields[i + 2]};
  }
  return ends;
}

}  // namespace

void readShellRecord(const std::string& directory, HostRun& run) {
  constexpr std::size_t FIELDS = 5;
  const Fields begun = fieldsOfRecord(directory + "/" + BEGUN_RECORD);
  std::map<std::string, End> ends = endsIn(directory);
  for (std::size_t i = 0; i + FIELDS <= begun.size(); i += FIELDS) {
    const std::string& commandLine = begun[i + 2];
    const End& end = ends[begun[i]];
    if (begun[i + 1].empty()) {
      run.hostCommands.push_back({commandLine, end.status});
    } else {
      const std::string printed = bytesOf(directory + "/" + TOOL + begun[i]).value_or("");
      run.toolRuns.push_back({commandLine, end.status, printed + end.log, begun[i + 3], begun[i + 4]});
    }
  }
}

}  // namespace vestra::testkit
