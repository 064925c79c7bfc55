#include "identity/vestra_project_info.h"

#include <chrono>

#include "identity/project_fixture.h"

namespace Oza {
namespace {

using std::chrono::system_clock;

constexpr Vestra::SectionType PROJECT_SECTION = Vestra::SOFTWARE_VERSION_AND_TARGET_DEVICE;

class ProjectInfo : public ProjectFixture {
 protected:
  VestraProjectInfo record{file(), &handler};
};

TEST_F(ProjectInfo, OfANewProjectReachesItsFileWithTheFirstAttempt) {
  EXPECT_TRUE(record.loadOrCreate());
  EXPECT_TRUE(isRandomUuid(record.getProjectId())) << record.getProjectId();
  EXPECT_EQ(record.getIteration(), 1U);
  EXPECT_EQ(record.getOrbeloFlow(), 0);
  EXPECT_EQ(identity(), "");
  EXPECT_TRUE(record.recordSendAttempt());
  EXPECT_EQ(identity(), identityText("1700000000", "0", "2", "0", record.getProjectId()));
}

TEST_F(ProjectInfo, OfANewProjectTakesTheLastNineteenBytesOfThePathForTheName) {
  VestraProjectInfo deep(project / "a/b/vestra/123456789 123456789", &handler);
  EXPECT_TRUE(deep.loadOrCreate());
  EXPECT_EQ(namesIn(project / "a/b/vestra"), std::vector<std::string>{"123456789 123456789"});
}

TEST_F(ProjectInfo, HasTheIdentifierOfTheHostBeforeTheStoredOne) {
  const struct {
    const char* name;
    std::optional<std::string> before;
    std::optional<std::pair<const char*, const char*>> hosts;
    std::string identifier;
    int flow;
    std::string after;
  } rows[] = {
      {"a new project",
       std::nullopt,
       {{"project_id", "host's own"}},
       "host's own",
       1,
       identityText("1700000000", "0", "2", "1", "host's own")},
      {"in capitals",
       std::nullopt,
       {{"PROJECT_ID", "loud"}},
       "loud",
       1,
       identityText("1700000000", "0", "2", "1", "loud")},
      {"an empty file",
       "",
       {{"project_id", "host's own"}},
       "host's own",
       0,
       identityText("1700000000", "0", "2", "0", "host's own")},
      {"a stored one",
       identityText("1", "2", "42", "0", "stored"),
       {{"Project_Id", "host's own"}},
       "host's own",
       0,
       identityText("1700000000", "2", "43", "0", "host's own")},
      {"an empty one of the host",
       identityText("1", "2", "42", "0", "stored"),
       {{"project_id", ""}},
       "stored",
       0,
       identityText("1700000000", "2", "43", "0", "stored")},
      {"none of the host", identityText("1", "2", "42", "1", "stored"), std::nullopt, "stored", 1,
       identityText("1700000000", "2", "43", "1", "stored")},
      {"one with a line end",
       std::nullopt,
       {{"project_id", "one\ntwo"}},
       "one\ntwo",
       1,
       identityText("1700000000", "0", "2", "1", "one\ntwo")},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    unlink(file().c_str());
    if (row.before) {
      writeIdentity(*row.before);
    }
    VestraHandler owner;
    if (row.hosts) {
      owner.addData(row.hosts->first, row.hosts->second, PROJECT_SECTION);
    }
    VestraProjectInfo loaded(file(), &owner);
    EXPECT_TRUE(loaded.loadOrCreate());
    EXPECT_EQ(identity(), row.before.value_or(""));
    EXPECT_EQ(loaded.getProjectId(), row.identifier);
    EXPECT_EQ(loaded.getOrbeloFlow(), row.flow);
    EXPECT_TRUE(loaded.recordSendAttempt());
    EXPECT_EQ(identity(), row.after);
  }
}

TEST_F(ProjectInfo, HasAnIdentifierOfItsOwnWithoutOneInTheFirstSection) {
  handler.addData("project_id", "", PROJECT_SECTION);
  handler.addData("project_id", "elsewhere", Vestra::USER_ENVIRONMENT);
  EXPECT_TRUE(record.loadOrCreate());
  EXPECT_TRUE(isRandomUuid(record.getProjectId())) << record.getProjectId();
  EXPECT_EQ(record.getOrbeloFlow(), 0);
}

TEST_F(ProjectInfo, OfAnEmptyFileWithATimeAheadHasNoIdentifier) {
  for (const auto ahead : {std::chrono::milliseconds(240), std::chrono::milliseconds(86400000)}) {
    writeIdentity("");
    dateFile(file(), system_clock::now() + ahead);
    VestraProjectInfo loaded(file(), &handler);
    EXPECT_TRUE(loaded.loadOrCreate());
    EXPECT_EQ(loaded.getProjectId(), "");
  }
}

TEST_F(ProjectInfo, IsDueOnceADayForEachOfTwoSlots) {
  const struct {
    std::time_t now;
    std::uint32_t product;
    bool isDue;
  } rows[] = {
      {1700000000, Vestra::TAVLO, true},
      {1700000000, Vestra::KELVO, false},
      {1700000000, 7, false},
      {1700000100, Vestra::KELVO_ALT, true},
      {1700000100, Vestra::KELVO_ALT, false},
      {1700086400, Vestra::KELVO, false},
      {1700086401, Vestra::KELVO, true},
  };
  record.loadOrCreate();
  for (const auto& row : rows) {
    const ScopedTime then(row.now);
    handler.setProductType(static_cast<Vestra::ProductType>(row.product));
    EXPECT_EQ(record.recordSendAttempt(), row.isDue) << row.product << " at " << row.now;
  }
  EXPECT_EQ(record.getIteration(), 8U);
  EXPECT_EQ(identity(), identityText("1700086401", "1700000100", "8", "0", record.getProjectId()));
}

TEST_F(ProjectInfo, IsWrittenInOurBytesUnderTheHostsLocale) {
  const ScopedLocale hosts(std::locale(digitGroupingLocale(), caseSwappingFilesLocale(), std::locale::ctype));
  writeIdentity(identityText("0", "0", "1000", "0", "Mixed Case"));
  record.loadOrCreate();
  EXPECT_EQ(record.getProjectId(), "Mixed Case");
  record.recordSendAttempt();
  EXPECT_EQ(identity(), identityText("1700000000", "0", "1001", "0", "Mixed Case"));
}

TEST_F(ProjectInfo, GoesOnWhenItCannotBeWritten) {
  writeIdentity(identityText("0", "0", "1", "0", "id"));
  record.loadOrCreate();
  unlink(file().c_str());
  rmdir((project / "vestra").c_str());
  EXPECT_TRUE(record.recordSendAttempt());
  EXPECT_FALSE(record.recordSendAttempt());
  EXPECT_EQ(record.getIteration(), 3U);
  EXPECT_EQ(namesIn(project.path()), std::vector<std::string>{});
}

TEST_F(ProjectInfo, OfAHandlerLiesInItsProjectAndIsMadeAnewEachTime) {
  EXPECT_TRUE(handler.setupVestraInfo());
  EXPECT_EQ(namesIn(project / "vestra"), std::vector<std::string>{".kelvo_vestrra.info"});
  writeIdentity("abc\n");
  EXPECT_FALSE(handler.setupVestraInfo());
  EXPECT_TRUE(handler.setupVestraInfo());
}

}  // namespace
}  // namespace Oza
