#include <ctime>

#include <gtest/gtest.h>

#include "inspect/place.h"

namespace vestra_test {
namespace {

class Documents : public testing::Test {
 protected:
  ~Documents() override { expectValid(documents); }

  void add(const Place& from, const Words& words) {
    Words all = {"--json"};
    all.insert(all.end(), words.begin(), words.end());
    documents.push_back(from.inspect(all).out);
  }

  Place place;

 private:
  std::vector<std::string> documents;
};

TEST_F(Documents, FitTheSchemaWhenNothingCouldBeAnswered) {
  add(place, {"--no-such-option"});
  add(place, {"--host", "/nowhere"});
  add(place, {"report", "/nowhere", "--env", "/nowhere"});
  add(place, {"rehearse"});
  add(place, {"list"});
  add(place, {"status", "one", "two"});
  add(place, {"rehearse", "--", "no-such-program"});
  add(place, {"rehearse", "--", place.project()});
}

TEST_F(Documents, FitTheSchemaForReportsAndLists) {
  add(place, {"list", place.project()});
  place.writeIdentity(std::time(nullptr));
  place.runHost("KELVO", {"bytes", "\xFF\x9B\x7F"});
  add(place, {"report"});
  add(place, {"report", "--redact"});
  add(place, {"list", place.project()});
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
}

}  // namespace
}  // namespace vestra_test
