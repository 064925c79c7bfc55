#include <gtest/gtest.h>

#include <boost/filesystem/exception.hpp>

#include <string>
#include <vector>

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

TEST_F(MessageFilter, MessageFilterOfTheSimulatorIsEmptyAndLeavesTheLog) {
  writeFile(log(), "old");
  handler.setProductType(Vestra::KELVO);
  EXPECT_EQ(handler.getVestraMsgFilter(), "");
  handler.setProductType(Vestra::KELVO_ALT);
  EXPECT_EQ(handler.getVestraMsgFilter(), "");
  EXPECT_EQ(readFile(log()), "old");
}

TEST_F(MessageFilter, MessageFilterOfTheLabToolDeletesTheOldLogEachTime) {
  writeFile(log(), "old");
  expectRemoval();
  writeFile(log(), "newer");
  expectRemoval();
}

TEST_F(MessageFilter, MessageFilterOfAnyOtherProductIsTheLabTools) {
  handler.setProductType(static_cast<Vestra::ProductType>(7));
  writeFile(log(), "old");
  expectRemoval();
}

TEST_F(MessageFilter, MessageFilterDoesNotMindAMissingLog) {
  makeDirectory(project / "vestra");
  expectRemoval();
}

TEST_F(MessageFilter, MessageFilterDoesNotMindAMissingDirectory) { expectRemoval(); }

TEST_F(MessageFilter, MessageFilterDoesNotMindAFileForTheVestraDirectory) {
  writeFile(project / "vestra", "");
  EXPECT_EQ(handler.getVestraMsgFilter(), " > " + log() + " 2>&1");
  EXPECT_EQ(readFile(project / "vestra"), "");
}

TEST_F(MessageFilter, MessageFilterDeletesAnEmptyDirectory) {
  makeDirectory(log());
  expectRemoval();
}

TEST_F(MessageFilter, MessageFilterThrowsAFilesystemErrorOnAFullDirectory) {
  writeFile(log() + "/file", "");
  EXPECT_THROW(handler.getVestraMsgFilter(), boost::filesystem::filesystem_error);
  EXPECT_TRUE(exists(log() + "/file"));
}

TEST_F(MessageFilter, MessageFilterDeletesANamedPipeWithoutWaiting) {
  makeNamedPipe(log());
  expectRemoval();
}

TEST_F(MessageFilter, MessageFilterDeletesASocket) {
  makeSocket(log());
  expectRemoval();
}

TEST_F(MessageFilter, MessageFilterDeletesALinkAndLeavesItsTarget) {
  writeFile(project / "target", "kept");
  makeLink(log(), project / "target");
  expectRemoval();
  EXPECT_EQ(readFile(project / "target"), "kept");
}

TEST_F(MessageFilter, MessageFilterDeletesALinkToADeviceAndLeavesTheDevice) {
  makeLink(log(), "/dev/null");
  expectRemoval();
  EXPECT_TRUE(exists("/dev/null"));
}

TEST_F(MessageFilter, MessageFilterDeletesALinkToNowhere) {
  makeLink(log(), project / "missing");
  expectRemoval();
}

TEST_F(MessageFilter, MessageFilterDeletesALinkToItself) {
  makeLink(log(), "tavlo_vestra.log");
  expectRemoval();
}

TEST_F(MessageFilter, MessageFilterDeletesAReadOnlyLog) {
  writeFile(log(), "old");
  const vestra_test::ScopedMode anybody(project / "vestra", 0777);
  chmod(log().c_str(), 0444);
  EXPECT_EQ(vestra_test::asOrdinaryUser([&] { return handler.getVestraMsgFilter(); }),
            " > " + log() + " 2>&1");
  EXPECT_FALSE(exists(log()));
}

TEST_F(MessageFilter, MessageFilterThrowsAFilesystemErrorInAReadOnlyDirectory) {
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
