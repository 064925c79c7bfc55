#include <set>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "inspect/damage.h"
#include "support/files.h"
#include "support/uuid_form.h"

namespace vestra_test {
namespace {

class EachDamage : public testing::TestWithParam<Damage> {
 protected:
  EachDamage() {
    GetParam().make(place);
    place.giveToUser();
  }

  Json doctor() const { return place.document({"doctor", "--product", GetParam().product}); }

  Place place;
};

std::string nameOf(const testing::TestParamInfo<Damage>& test) { return test.param.name; }

/// How a run went, in the prediction's words.
std::string outcomeOf(const Place& place, const std::string& product, const Outcome& run) {
  if (run.out.rfind("exception", 0) == 0) {
    return "throws";
  }
  if (run.out.rfind("true", 0) == 0) {
    return "reports";
  }
  const std::string script = place.inVestra(product == "TAVLO" ? "tavlo_vestra.tcl" : "kelvo_vestra.tcl");
  return exists(script) ? "not_due" : "nothing";
}

/// A new identifier is not foretold, but that there will be one is.
void expectIdentifier(const Json& foretold, const std::string& written, const char* key) {
  if (foretold.is_null()) {
    EXPECT_TRUE(isRandomUuid(written)) << key << " " << written;
  } else {
    EXPECT_EQ(written, foretold.get<std::string>()) << key;
  }
}

TEST_P(EachDamage, IsToldWithTheConsequencesThatItHas) {
  const Json told = doctor();
  EXPECT_THAT(findingsOf(told), testing::Contains(GetParam().finding));
  const Json next = predictionOf(told, GetParam().product);
  const std::string script =
      place.inVestra(GetParam().product == "TAVLO" ? "tavlo_vestra.tcl" : "kelvo_vestra.tcl");
  const bool hadIdentity = exists(place.identity());
  // The script is wanted afterwards.
  place.setVariable("CALVIX_VESTRA_DEBUG_EXT", "1");
  const Outcome run = place.runHost(GetParam().product);
  EXPECT_EQ(outcomeOf(place, GetParam().product, run), next.at("next_run").get<std::string>()) << run.out;
  EXPECT_EQ(hadIdentity && !exists(place.identity()), next.at("deletes_identity").get<bool>());
  if (next.at("next_run") != "nothing" && namesIn(script).empty() && exists(script) &&
      GetParam().finding != "tool.script_place" && GetParam().finding != "project.script_locked") {
    const std::string written = readFile(script);
    expectIdentifier(next.at("project_id"), valueIn(written, "project_id"), "project_id");
    expectIdentifier(next.at("random_id"), valueIn(written, "random_id"), "random_id");
    EXPECT_EQ(valueIn(written, "project_iteration"), next.at("iteration").get<std::string>());
  }
}

INSTANTIATE_TEST_SUITE_P(Damages, EachDamage, testing::ValuesIn(damages()), nameOf);

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

TEST(DamageTables, HoldNoRowThatTheDoctorDoesNotKnow) {
  std::set<std::string> known = {"disk full", "disk full when it is written"};
  for (const Damage& damage : damages()) {
    known.insert(damage.row);
  }
  EXPECT_EQ(rowsOfDamageTables(readFile(DOCUMENTS "/file-formats.md")), known);
}

}  // namespace
}  // namespace vestra_test
