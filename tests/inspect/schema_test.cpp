#include <sys/stat.h>

#include <ctime>
#include <fstream>

#include <gtest/gtest.h>

#include "inspect/scenarios.h"
#include "support/files.h"

namespace vestra_test {
namespace {

constexpr const char* VALIDATOR =
    "import json, sys, jsonschema\n"
    "schema = json.load(open(sys.argv[1]))\n"
    "jsonschema.Draft202012Validator.check_schema(schema)\n"
    "validator = jsonschema.Draft202012Validator(schema)\n"
    "documents = [json.loads(text) for text in open(sys.argv[2]).read().split(chr(0))[1:]]\n"
    "for document in documents:\n"
    "    validator.validate(document)\n"
    "print(len(documents))\n";

/// Documents in one file, for one run of the validator.
class Documents : public testing::Test {
 protected:
  void add(const Place& from, const Words& words) {
    Words all = {"--json"};
    all.insert(all.end(), words.begin(), words.end());
    std::ofstream(file(), std::ios::app | std::ios::binary) << '\0' << from.inspect(all).out;
    ++count;
  }

  void expectValid() const {
    const Outcome valid = run({"python3", "-c", VALIDATOR, SCHEMA, file()});
    EXPECT_EQ(valid.out, std::to_string(count) + "\n") << valid.err;
  }

  std::string file() const { return directory / "documents"; }

  TemporaryDirectory directory;
  Place place;
  int count = 0;
};

TEST_F(Documents, FitTheSchemaInEachScenario) {
  for (const Scenario& scenario : scenarios()) {
    Place made;
    scenario.make(made);
    made.giveToUser();
    for (const char* command : {"status", "report", "doctor"}) {
      add(made, wordsFor(command, scenario, made));
    }
  }
  expectValid();
}

TEST_F(Documents, FitTheSchemaWhenNothingCouldBeAnswered) {
  add(place, {"--no-such-option"});
  add(place, {"--host", "/nowhere"});
  add(place, {"report", "/nowhere", "--env", "/nowhere"});
  add(place, {"rehearse"});
  add(place, {"rehearse", "--", "no-such-program"});
  add(place, {"rehearse", "--", place.project()});
  expectValid();
}

TEST_F(Documents, FitTheSchemaForEachEndOfARehearsal) {
  const Words host = {"rehearse", "--", place.host(), place.project(), "KELVO", "bytes", "\xFF"};
  add(place, {"rehearse", "--", "true"});
  add(place, host);
  place.writeIdentity(std::time(nullptr));
  add(place, host);
  place.setVariable("VESTRA_TESTKIT_NULL", "regid");
  add(place, host);
  place.setVariable("LD_LIBRARY_PATH", "/nowhere");
  add(place, host);
  add(place, {"rehearse", "--", "sh", "-c", "unset LD_PRELOAD; exec " + place.host() + " . KELVO"});
  expectValid();
}

}  // namespace
}  // namespace vestra_test
