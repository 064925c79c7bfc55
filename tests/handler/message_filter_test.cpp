#include <sys/stat.h>

#include <boost/filesystem/exception.hpp>

#include "handler/vestra_handler.h"
#include "support/test.h"

namespace Oza {
namespace {

/// A lab tool's handler; what stands at its log's path is up to the test.
class MessageFilter : public Test {
 protected:
  MessageFilter() {
    handler.setProjectDirectory(project.path());
    handler.setProductType(Vestra::TAVLO);
  }

  std::string log() const { return project / "vestra/tavlo_vestra.log"; }

  void expectRemoval() {
    EXPECT_EQ(handler.getVestraMsgFilter(), " > " + project.path() + "/vestra/tavlo_vestra.log 2>&1");
    EXPECT_FALSE(exists(log()));
  }

  TemporaryDirectory project;
  VestraHandler handler;
  TimeLimit limit;
};

TEST_F(MessageFilter, OfTheSimulatorIsEmptyAndLeavesTheLog) {
  writeFile(log(), "old");
  handler.setProductType(Vestra::KELVO);
  EXPECT_EQ(handler.getVestraMsgFilter(), "");
  EXPECT_EQ(readFile(log()), "old");
}

TEST_F(MessageFilter, OfTheLabToolDeletesWhateverIsInTheLogsPlace) {
  makeDirectory(project / "vestra");
  std::vector<Obstacle> oldLogs = obstacles();
  oldLogs.push_back({"a file", [](const std::string& path) { writeFile(path, "old"); }});
  oldLogs.push_back({"nothing", [](const std::string&) {}});
  oldLogs.push_back({"a link to a device", [](const std::string& path) { makeLink(path, "/dev/null"); }});
  for (const Obstacle& old : oldLogs) {
    SCOPED_TRACE(old.name);
    old.put(log());
    expectRemoval();
  }
  EXPECT_TRUE(exists("/dev/null"));
}

TEST_F(MessageFilter, LeavesTheTargetOfALink) {
  writeFile(project / "target", "kept");
  makeDirectory(project / "vestra");
  makeLink(log(), project / "target");
  expectRemoval();
  EXPECT_EQ(readFile(project / "target"), "kept");
}

TEST_F(MessageFilter, DoesNotMindAMissingDirectoryOrAFileInItsPlace) {
  expectRemoval();
  writeFile(project / "vestra", "");
  expectRemoval();
  EXPECT_EQ(readFile(project / "vestra"), "");
}

TEST_F(MessageFilter, ThrowsAFilesystemErrorOnAFullDirectory) {
  writeFile(log() + "/file", "");
  EXPECT_THROW(handler.getVestraMsgFilter(), boost::filesystem::filesystem_error);
  EXPECT_TRUE(exists(log() + "/file"));
}

TEST_F(MessageFilter, DeletesAReadOnlyLog) {
  writeFile(log(), "old");
  const ScopedMode anybody(project / "vestra", 0777);
  chmod(log().c_str(), 0444);
  EXPECT_EQ(asOrdinaryUser([&] { return handler.getVestraMsgFilter(); }), " > " + log() + " 2>&1");
  EXPECT_FALSE(exists(log()));
}

TEST_F(MessageFilter, ThrowsAFilesystemErrorInAReadOnlyDirectory) {
  writeFile(log(), "old");
  const ScopedMode readOnly(project / "vestra", 0555);
  EXPECT_EQ(asOrdinaryUser([&]() -> std::string {
              try {
                return handler.getVestraMsgFilter();
              } catch (const boost::filesystem::filesystem_error&) {
                return "filesystem_error";
              }
            }),
            "filesystem_error");
  EXPECT_EQ(readFile(log()), "old");
}

}  // namespace
}  // namespace Oza
