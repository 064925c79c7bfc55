#include "inspect/place.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <ctime>

#include <gtest/gtest.h>
#include <boost/filesystem/operations.hpp>

#include "support/files.h"

namespace vestra_test {
namespace {

namespace fs = boost::filesystem;

constexpr const char* ENVIRONMENT =
    "os_name#Linux#os_release#12#cpu_name#X1#cpu_speed#3 GHz#total_processors#8#system_ram#32 GB"
    "#date_generated#2026-11-21";

/// A host that a signal ends is not to report that and exit.
constexpr const char* SANITIZER =
    "ASAN_OPTIONS=detect_leaks=0:verify_asan_link_order=0:handle_sigbus=0:handle_segv=0";

constexpr const char* VALIDATOR =
    "import json, sys, jsonschema\n"
    "schema = json.load(open(sys.argv[1]))\n"
    "jsonschema.Draft202012Validator.check_schema(schema)\n"
    "validator = jsonschema.Draft202012Validator(schema)\n"
    "documents = [json.loads(text) for text in open(sys.argv[2]).read().split(chr(0))[1:]]\n"
    "for document in documents:\n"
    "    validator.validate(document)\n"
    "print(len(documents))\n";

/// A second name costs less than a second file, where the file system allows it.
void putInto(const std::string& file, const fs::path& directory, const std::string& name = "") {
  const fs::path copy = directory / (name.empty() ? fs::path(file).filename() : fs::path(name));
  fs::create_directories(directory);
  boost::system::error_code isElsewhere;
  fs::create_hard_link(file, copy, isElsewhere);
  if (isElsewhere) {
    fs::copy_file(file, copy);
  }
}

}  // namespace

Place::Place() {
  chmod((directory / "").c_str(), 0755);
  fs::create_directories(home());
  fs::create_directories(project());
  putInto(VESTRA_INSPECT, programs() + "/bin");
  for (const char* program : {ITEMS_HOST, LAB_TOOL, OPENING_HOST, OWN_SYSTEM_HOST, RPATH_HOST, SET_CLOCK,
                              SIMULATOR, UNUSUAL_HOST}) {
    putInto(program, programs() + "/bin");
  }
  putInto(VESTRA_LIBRARY, programs() + "/bin", "libvestra.so.1");
  putInto(REHEARSAL_OBJECT, programs() + "/" INSPECT_LIBDIR);
  putInto(SUPPORT_PROBE, programs() + "/" INSPECT_LIBDIR);
  putInto(SUPPORT_LIBRARY, support());
  fs::create_directories(elsewhere());
  for (const std::string& each :
       {"HOME=" + home(), std::string("TZ=UTC"), std::string("LD_LIBRARY_PATH=") + support(),
        std::string("VESTRA_TESTKIT_REGID=REG-42"), std::string("VESTRA_TESTKIT_ENVIRONMENT=") + ENVIRONMENT,
        std::string("VESTRA_TESTKIT_EXEC_PATH=true"), std::string("TMPDIR=") + (directory / "temporary"),
        std::string(SANITIZER), std::string("NO_COLOR=")}) {
    variables.push_back(each);
  }
  fs::create_directories(directory / "temporary");
  giveToUser();
}

void Place::write(const std::string& path, const std::string& text) const {
  writeFile(path, text);
  giveToUser();
}

void Place::writeIdentity(std::int64_t last, std::int64_t lastAlt, const std::string& iteration) const {
  write(identity(),
        std::to_string(last) + "\n" + std::to_string(lastAlt) + "\n" + iteration + "\n0\nthe-project\n");
}

void Place::moveProject(const std::string& path) {
  projectDirectory = path;
  if (path.find("nowhere") == std::string::npos) {
    fs::create_directories(path);
  }
}

void Place::setVariable(const std::string& name, const std::string& value) {
  const std::string beginning = name + "=";
  variables.erase(std::remove_if(variables.begin(), variables.end(),
                                 [&](const std::string& each) { return each.rfind(beginning, 0) == 0; }),
                  variables.end());
  variables.push_back(beginning + value);
}

Outcome Place::inspect(const Words& words) const {
  Words all = {inspector()};
  all.insert(all.end(), words.begin(), words.end());
  return runProgram(all);
}

Json Place::document(Words words) const {
  words.emplace_back("--json");
  return Json::parse(inspect(words).out);
}

Outcome Place::runHost(const std::string& product, const Words& items) const {
  Words all = {host(), project(), product};
  all.insert(all.end(), items.begin(), items.end());
  return runProgram(all);
}

Outcome Place::runProgram(const Words& words) const {
  return run(asUser(words), variables, directory / "project");
}

Command Place::asUser(const Words& words) const {
  Command command;
  if (geteuid() == 0) {
    command = {"setpriv", "--reuid=65534", "--regid=65534", "--clear-groups"};
  }
  command.insert(command.end(), words.begin(), words.end());
  return command;
}

// The loader reads the libraries elsewhere, as it does for ldd.
std::string Place::snapshot() const {
  const std::string all = "%p %y %m %s %l %T@ %C@";
  return run({"find", home(), directory / "project", "-type", "f", "-printf", all + " %A@\n", "-o", "-printf",
              "%p %y %m %l %T@ %C@\n"})
             .out +
         run({"find", elsewhere(), "-printf", all + "\n"}).out;
}

void Place::giveToUser() const {
  if (geteuid() == 0) {
    const std::string own = "! -name programs ! -name support";
    run({"sh", "-c", "find \"$1\" -mindepth 1 -maxdepth 1 " + own + " -exec chown -hR 65534:65534 {} +", "sh",
         directory / ""});
  }
}

std::vector<std::string> findingsOf(const Json& document) {
  std::vector<std::string> ids;
  for (const Json& finding : document.at("findings")) {
    ids.push_back(finding.at("id"));
  }
  return ids;
}

void expectValid(const std::vector<std::string>& documents) {
  const TemporaryDirectory directory;
  std::string all;
  for (const std::string& document : documents) {
    all += '\0' + document;
  }
  writeFile(directory / "documents", all);
  const Outcome valid = run({"python3", "-c", VALIDATOR, SCHEMA, directory / "documents"});
  EXPECT_EQ(valid.out, std::to_string(documents.size()) + "\n") << valid.err;
}

Json predictionOf(const Json& document, const std::string& product) {
  for (const Json& each : document.at("due")) {
    if (each.at("product") == product) {
      return each;
    }
  }
  return {};
}

std::string valueIn(const std::string& script, const std::string& key) {
  const std::string begin = " -key " + key + " -value \"";
  const std::size_t found = script.find(begin);
  if (found == std::string::npos) {
    return "(none)";
  }
  const std::size_t value = found + begin.size();
  return script.substr(value, script.find("\" -context ", value) - value);
}

}  // namespace vestra_test
