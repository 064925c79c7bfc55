#include <gtest/gtest.h>

#include <boost/filesystem/exception.hpp>

#include <string>

#include "handler/vestra_handler.h"
#include "support/child_process.h"
#include "support/files.h"
#include "support/special_files.h"
#include "support/temporary_directory.h"
#include "support/time_limit.h"

namespace Oza {
namespace {

using vestra_test::exists;
using vestra_test::makeDirectory;
using vestra_test::makeLink;
using vestra_test::makeNamedPipe;
using vestra_test::makeSocket;
using vestra_test::readFile;
using vestra_test::writeFile;

/// A lab tool's handler; what stands at its log's path is up to the test.
class MessageFilter : public testing::Test {
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

  vestra_test::TemporaryDirectory project;
  VestraHandler handler;
  vestra_test::TimeLimit limit;
};

TEST_F(MessageFilter, OfTheSimulatorIsEmptyAndLeavesTheLog) {
  writeFile(log(), "old");
  handler.setProductType(Vestra::KELVO);
  EXPECT_EQ(handler.getVestraMsgFilter(), "");
  EXPECT_EQ(readFile(log()), "old");
}

struct OldLog {
  const char* name;
  void (*make)(const std::string& path);
};

const OldLog OLD_LOGS[] = {
    {"file", [](const std::string& path) { writeFile(path, "old"); }},
    {"nothing", [](const std::string&) {}},
    {"empty directory", [](const std::string& path) { makeDirectory(path); }},
    {"named pipe", [](const std::string& path) { makeNamedPipe(path); }},
    {"socket", [](const std::string& path) { makeSocket(path); }},
    {"link to a device", [](const std::string& path) { makeLink(path, "/dev/null"); }},
    {"link to nowhere", [](const std::string& path) { makeLink(path, path + ".missing"); }},
    {"link to itself", [](const std::string& path) { makeLink(path, path); }}};

TEST_F(MessageFilter, OfTheLabToolDeletesTheOldLogEachTime) {
  makeDirectory(project / "vestra");
  for (const OldLog& old : OLD_LOGS) {
    SCOPED_TRACE(old.name);
    old.make(log());
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

TEST_F(MessageFilter, DoesNotMindAMissingDirectory) { expectRemoval(); }

TEST_F(MessageFilter, DoesNotMindAFileForTheVestraDirectory) {
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
  const vestra_test::ScopedMode anybody(project / "vestra", 0777);
  chmod(log().c_str(), 0444);
  EXPECT_EQ(vestra_test::asOrdinaryUser([&] { return handler.getVestraMsgFilter(); }),
            " > " + log() + " 2>&1");
  EXPECT_FALSE(exists(log()));
}

TEST_F(MessageFilter, ThrowsAFilesystemErrorInAReadOnlyDirectory) {
  writeFile(log(), "old");
  const vestra_test::ScopedMode readOnly(project / "vestra", 0555);
  EXPECT_EQ(vestra_test::asOrdinaryUser([&]() -> std::string {
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
