// What is predicted in each state is what a host then does; looking changes nothing; each fix helps; a
// redacted output holds no secret; each document fits the schema.

#include <algorithm>
#include <ctime>
#include <fstream>
#include <set>
#include <stdexcept>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "inspect/states.h"
#include "support/files.h"
#include "support/uuid_form.h"

namespace vestra_test {
namespace {

using testing::Contains;
using testing::HasSubstr;
using testing::Not;

/// What the tool got, if it was started.
struct Handed {
  bool isStarted = false;
  std::string script;
};

/// A place in a state, with a tool that keeps what it gets.
class Observed {
 public:
  explicit Observed(const State& made) : state(made) {
    // A pipe in the script's place would hold the tool for ever.
    place.write(tool(),
                "#!/bin/sh\n>" + kept() + "\n[ -p \"$4\" ] || cat \"$4\" >" + kept() + " 2>/dev/null\n");
    place.runProgram({"chmod", "755", tool()});
    place.setVariable("VESTRA_TESTKIT_EXEC_PATH", tool());
    state.make(place);
    place.giveToUser();
    run({"rm", "-f", kept()});
  }

  Words words(const Words& first) const {
    Words all = first;
    all.insert(all.end(), {"--product", state.product, place.project()});
    return all;
  }
  Json document() const { return place.document(words({"doctor"})); }

  Outcome runHost() const { return place.runHost(state.product, {"of_this_run", "yes"}); }
  std::string scriptPath() const {
    return place.inVestra(state.product == "TAVLO" ? "tavlo_vestra.tcl" : "kelvo_vestra.tcl");
  }
  Handed handed() const { return {exists(kept()), exists(kept()) ? readFile(kept()) : ""}; }

  Place place;

 private:
  std::string tool() const { return place / "temporary/tool"; }
  std::string kept() const { return place / "temporary/handed"; }

  const State& state;
};

bool isWhole(const std::string& script) {
  return script.find("-key of_this_run ") != std::string::npos &&
         script.find("\nvestra_terminate\n") != std::string::npos;
}

/// What a regular file holds; empty where that cannot be read.
std::string contentOf(const std::string& path) {
  return run({"test", "-f", path}).status == 0 ? run({"head", "-c", "4000000", path}).out : "";
}

/// How a run went, in the prediction's words.
std::string outcomeOf(const Observed& seen, const Outcome& run, const std::string& identityBefore) {
  if (run.status >= 128) {
    return "dies";
  }
  if (run.out.find("exception: ") != std::string::npos) {
    return "throws";
  }
  if (("\n" + run.out).find("\ntrue\n") != std::string::npos) {
    return isWhole(seen.handed().script) ? "reports" : "lost";
  }
  const std::string identity = contentOf(seen.place.identity());
  return !identity.empty() && identity != identityBefore ? "not_due" : "nothing";
}

/// A new identifier is not predicted, but that there will be one is.
void expectIdentifier(const Json& predicted, const std::string& written, const char* key) {
  if (predicted.is_null()) {
    EXPECT_TRUE(isRandomUuid(written)) << key << " " << written;
  } else if (predicted.is_string() && predicted.get<std::string>().size() < 65536) {
    EXPECT_EQ(written, predicted.get<std::string>()) << key;
  }
}

void expectItems(const Json& next, const std::string& script) {
  expectIdentifier(next.at("project_id"), valueIn(script, "project_id"), "project_id");
  expectIdentifier(next.at("random_id"), valueIn(script, "random_id"), "random_id");
  EXPECT_EQ(valueIn(script, "project_iteration"), next.at("iteration").get<std::string>());
}

void expectToHappen(const Observed& seen, const Json& next) {
  const std::string before = contentOf(seen.place.identity());
  const bool wasThere =
      run({"test", "-L", seen.place.identity(), "-o", "-e", seen.place.identity()}).status == 0;
  const Outcome outcome = seen.runHost();
  if (next.at("next_run") == "unknown") {
    return;
  }
  EXPECT_EQ(outcomeOf(seen, outcome, before), next.at("next_run").get<std::string>())
      << next.dump() << "\n"
      << outcome.out << outcome.err;
  const bool isThere =
      run({"test", "-L", seen.place.identity(), "-o", "-e", seen.place.identity()}).status == 0;
  EXPECT_EQ(wasThere && !isThere, next.at("deletes_identity").get<bool>());
  const std::string script =
      next.at("next_run") == "reports" ? seen.handed().script : contentOf(seen.scriptPath());
  if (isWhole(script)) {
    expectItems(next, script);
  }
}

/// The verdict of a product and the findings say the same.
void expectAgreement(const Json& document, const Json& next) {
  const std::vector<std::string> found = findingsOf(document);
  const std::string reason = next.at("reason");
  if (!reason.empty()) {
    EXPECT_THAT(found, Contains(reason));
  }
  if (next.at("next_run") == "reports") {
    for (const char* obstacle :
         {"project.unwritable", "project.vestra_is_file", "project.readonly", "project.full", "project.shell",
          "identity.number", "identity.unwritable", "identity.special", "identity.loop", "support.absent",
          "support.broken", "support.entry", "support.null", "tool.shell", "tool.missing", "tool.log",
          "tool.script_place"}) {
      EXPECT_THAT(found, Not(Contains(obstacle)));
    }
  }
}

std::string linesHolding(const std::string& text, const std::string& part) {
  std::string lines;
  for (std::size_t at = text.find(part); at != std::string::npos;
       at = text.find('\n', at) == std::string::npos ? std::string::npos
                                                     : text.find(part, text.find('\n', at))) {
    const std::size_t begin = text.rfind('\n', at) + 1;
    lines += text.substr(begin, text.find('\n', at) - begin) + "\n";
  }
  return lines;
}

/// System calls that a process which only looks has no use for. The loader is the one program that is
/// started.
std::string changesIn(const std::string& trace) {
  std::string found;
  for (const char* call : {"socket(", "connect(", "mkdir",  "unlink",  "rename",   "rmdir(",     "link(",
                           "symlink", "mknod",    "chmod",  "chown",   "truncate", "utimensat(", "creat(",
                           "flock(",  "O_WRONLY", "O_RDWR", "O_CREAT", "O_TRUNC",  "O_APPEND"}) {
    std::string lines = linesHolding(trace, call);
    // A build that counts lines writes the counts at its end.
    if (lines.find("readlink") == std::string::npos && lines.find(".gcda") == std::string::npos) {
      found += lines;
    }
  }
  return found;
}

void expectNoChange(const Observed& seen) {
  const std::string before = seen.place.snapshot();
  Words words = {"strace",
                 "-f",
                 "-qq",
                 "-e",
                 "trace=%file,%process,%network,ftruncate,fchmod,fchown,flock",
                 "-o",
                 seen.place / "temporary/trace",
                 seen.place.inspector()};
  const Words doctor = seen.words({"doctor"});
  words.insert(words.end(), doctor.begin(), doctor.end());
  seen.place.runProgram(words);
  seen.place.inspect(seen.words({"status"}));
  seen.place.inspect(seen.words({"report"}));
  const std::string trace = readFile(seen.place / "temporary/trace");
  EXPECT_EQ(changesIn(trace), "");
  const std::string started = linesHolding(trace, "execve(");
  EXPECT_LE(std::count(started.begin(), started.end(), '\n'), 2) << started;
  EXPECT_EQ(seen.place.snapshot(), before);
}

void expectNoSecret(const Observed& seen, const State& state) {
  for (const Words& words : {Words{"status"}, Words{"report"}, Words{"doctor"}, Words{"doctor", "--json"},
                             Words{"report", "--json"}}) {
    Words redacted = seen.words(words);
    redacted.emplace_back("--redact");
    const std::string out = seen.place.inspect(redacted).out;
    for (const std::string& secret : state.secrets) {
      EXPECT_THAT(out, Not(HasSubstr(secret))) << words[0];
    }
  }
}

Json findingIn(const Json& document, const std::string& id) {
  for (const Json& finding : document.at("findings")) {
    if (finding.at("id") == id) {
      return finding;
    }
  }
  throw std::out_of_range("there is no finding " + id);
}

/// Whether the finding is gone after its fix, executed by the user in the same state.
void expectFixed(const State& state, const std::string& id) {
  const Observed seen(state);
  const Place& place = seen.place;
  const Json finding = findingIn(seen.document(), id);
  Words words = {"sh", "-c", finding.at("fix")[0].get<std::string>() + "\nexec \"$@\"", "sh",
                 place.inspector()};
  const Words doctor = seen.words({"doctor", "--json"});
  words.insert(words.end(), doctor.begin(), doctor.end());
  const Outcome after = place.runProgram(words);
  EXPECT_THAT(findingsOf(Json::parse(after.out)), Not(Contains(id))) << finding.dump() << after.err;
}

/// The tables' states, in a program of their own for each table.
class States : public testing::Test {
 protected:
  void expectTrue(const std::vector<State>& states) {
    for (const State& state : states) {
      SCOPED_TRACE(state.name);
      expectTrue(state);
    }
    EXPECT_LE(unknown, 1 + states.size() / 20);
    expectValid(documents);
  }

 private:
  void expectTrue(const State& state) {
    const Observed seen(state);
    expectNoChange(seen);
    expectNoSecret(seen, state);
    const std::string text = seen.place.inspect(seen.words({"doctor", "--json"})).out;
    documents.push_back(text);
    const Json document = Json::parse(text);
    const Json next = predictionOf(document, state.product);
    unknown += next.at("next_run") == "unknown" ? 1 : 0;
    if (!state.finding.empty()) {
      EXPECT_THAT(findingsOf(document), Contains(state.finding));
    }
    expectAgreement(document, next);
    for (const Json& finding : document.at("findings")) {
      if (!finding.at("fix").empty() && fixed.insert(finding.at("id")).second) {
        expectFixed(state, finding.at("id"));
      }
    }
    if (state.isRun) {
      expectToHappen(seen, next);
    }
  }

  std::size_t unknown = 0;
  std::vector<std::string> documents;
  std::set<std::string> fixed;
};

TEST_F(States, OfSettingsAreTold) { expectTrue(settingsStates()); }
TEST_F(States, OfIdentitiesAreTold) { expectTrue(identityStates()); }
TEST_F(States, OfReportsAreTold) { expectTrue(reportStates()); }
TEST_F(States, OfFileKindsAreTold) { expectTrue(fileKindStates()); }
TEST_F(States, OfModesAreTold) { expectTrue(modeStates()); }
TEST_F(States, OfSupportLibrariesAreTold) { expectTrue(supportStates()); }
TEST_F(States, OfEnvironmentsAreTold) { expectTrue(environmentStates()); }

std::vector<State> allStates() {
  std::vector<State> all;
  for (const auto& states : {settingsStates(), identityStates(), reportStates(), fileKindStates(),
                             modeStates(), supportStates(), environmentStates()}) {
    all.insert(all.end(), states.begin(), states.end());
  }
  return all;
}

/// The first cells of the tables whose first column is "Damage".
std::set<std::string> rowsOfDamageTables(const std::string& document) {
  std::set<std::string> rows;
  bool inTable = false;
  for (std::size_t begin = 0; begin < document.size();) {
    const std::size_t end = std::min(document.find('\n', begin), document.size());
    const std::string line = document.substr(begin, end - begin);
    begin = end + 1;
    if (line.rfind("| Damage |", 0) == 0) {
      inTable = true;
    } else if (line.rfind("| ", 0) != 0) {
      inTable = inTable && line.rfind("|--", 0) == 0;
    } else if (inTable) {
      rows.insert(line.substr(2, line.find(" | ") - 2));
    }
  }
  return rows;
}

TEST(StateTable, HasEachRowOfTheFormatsTables) {
  std::set<std::string> rows = rowsOfDamageTables(readFile(DOCUMENTS "/file-formats.md"));
  for (const State& state : allStates()) {
    rows.erase(state.row);
  }
  EXPECT_THAT(rows, testing::IsSubsetOf(
                        {"an identifier behind the first MiB", "disk full", "disk full when it is written",
                         "file-size limit of the process below the record's length", "longer than 1 MiB",
                         "cannot be opened at this time (`EMFILE`, `EIO`, a lease for longer than 250 ms)",
                         "not to be opened or read again when the attempt is counted",
                         "writable, but not readable (`EACCES`)"}));
}

TEST(StateTable, IsLarge) { EXPECT_GE(allStates().size(), 250U); }

}  // namespace
}  // namespace vestra_test
