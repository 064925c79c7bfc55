// A main design tool that checks what it reads:
//
//     farm_tool -mode batch -source SCRIPT -notrace
//
// The environment says how: FARM_TOOL_MILLISECONDS is how long it takes between reading
// the script and reading the rules file beside it, FARM_TOOL_RULES a file with the right
// rules, FARM_TOOL_RECORD the file that gets one line for each start: what is wrong with
// the script, what is wrong with the rules ("right" where nothing is), and the project's
// and the user's identifier ("none" where the script has none).

#include <fcntl.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <ctime>
#include <string>
#include <thread>

#include "support/files.h"
#include "support/report_check.h"

namespace {

std::string setting(const char* name) {
  const char* value = std::getenv(name);
  return value == nullptr ? "" : value;
}

std::string rulesBeside(const std::string& script) {
  const std::string product = script.find("/tavlo_vestra.tcl") == std::string::npos ? "kelvo" : "tavlo";
  return script.substr(0, script.rfind('/')) + "/usage_statistics_ext_" + product + ".wdm";
}

/// The bytes of a file that another process may remove at any moment.
std::string bytesOf(const std::string& path, bool& isThere) {
  try {
    isThere = true;
    return vestra_test::readFile(path);
  } catch (const std::exception&) {
    isThere = false;
    return "";
  }
}

std::string wordFor(const std::string& fault) { return fault.empty() ? "right" : fault; }

std::string identifierIn(const std::string& script, const std::string& key) {
  const std::string identifier = vestra_test::valueOf(script, key);
  return identifier.empty() ? "none" : identifier;
}

std::string checkRules(const std::string& path) {
  bool isThere = false;
  const std::string rules = bytesOf(path, isThere);
  if (!isThere) {
    return "missing";
  }
  if (rules.empty()) {
    return "empty";
  }
  return rules == vestra_test::readFile(setting("FARM_TOOL_RULES")) ? "right" : "torn";
}

void record(const std::string& line) {
  const int file = open(setting("FARM_TOOL_RECORD").c_str(), O_WRONLY | O_CREAT | O_APPEND, 0600);
  if (write(file, line.data(), line.size()) != static_cast<ssize_t>(line.size())) {
    std::abort();
  }
  close(file);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 6) {
    return EXIT_FAILURE;
  }
  const std::string path = argv[4];
  bool isThere = false;
  const std::string script = bytesOf(path, isThere);
  const std::string fault = isThere ? vestra_test::faultOf(script, std::time(nullptr)) : "missing";
  std::this_thread::sleep_for(std::chrono::milliseconds(std::stoi(setting("FARM_TOOL_MILLISECONDS"))));
  record(wordFor(fault) + " " + checkRules(rulesBeside(path)) + " " + identifierIn(script, "project_id") +
         " " + identifierIn(script, "random_id") + "\n");
  return EXIT_SUCCESS;
}
