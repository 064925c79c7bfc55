#include <gtest/gtest.h>

#include <boost/filesystem/exception.hpp>

#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "handler/command_line.h"
#include "handler/report_fixture.h"
#include "handler/support_library.h"
#include "support/child_process.h"
#include "support/error_of.h"
#include "support/files.h"
#include "support/interposed/clock.h"
#include "support/interposed/shell.h"
#include "support/scoped_env.h"
#include "support/special_files.h"

namespace Oza {
namespace {

using vestra_test::errorOf;
using vestra_test::exists;
using vestra_test::namesIn;
using vestra_test::readFile;
using vestra_test::RecordingShell;
using vestra_test::ScopedEnv;
using vestra_test::ScopedTime;
using vestra_test::writeFile;

using Names = std::vector<std::string>;

/// A report that is prepared and waits for its run.
class ReportRun : public vestra_test::ReportFixture {
 protected:
  ReportRun() { writeIdentity("0\n0\n7\n0\nid\n"); }

  void prepareFor(Vestra::ProductType product) {
    handler.setProductType(product);
    ASSERT_TRUE(handler.prepareVestraData());
  }

  Names filesLeft() const { return namesIn(project / "vestra"); }

  ScopedEnv noDebugging{"CALVIX_VESTRA_DEBUG_EXT", std::nullopt};
};

TEST_F(ReportRun, OfTheSimulatorHasItsCommandLine) {
  RecordingShell shell;
  prepareFor(Vestra::KELVO);
  library.nameTool("/opt/design/bin/tool");
  EXPECT_TRUE(handler.execVestraData());
  EXPECT_EQ(shell.commandLines(), Names{"/opt/design/bin/tool -mode batch -source " + project.path() +
                                        "/vestra/kelvo_vestra.tcl -notrace "});
}

TEST_F(ReportRun, OfTheLabToolHasItsCommandLine) {
  RecordingShell shell;
  prepareFor(Vestra::TAVLO);
  library.nameTool("/opt/design/bin/tool");
  EXPECT_TRUE(handler.execVestraData());
  EXPECT_EQ(shell.commandLines(), Names{"/opt/design/bin/tool -mode batch -source " + project.path() +
                                        "/vestra/tavlo_vestra.tcl -notrace  > " + project.path() +
                                        "/vestra/tavlo_vestra.log 2>&1"});
}

TEST(CommandLine, QuotesNothing) {
  EXPECT_EQ(commandLine("env X=1 'the tool'", "/a b;$c//script", ""),
            "env X=1 'the tool' -mode batch -source /a b;$c//script -notrace ");
  EXPECT_EQ(commandLine("", "script", redirectionTo("/a b/log")),
            " -mode batch -source script -notrace  > /a b/log 2>&1");
}

TEST_F(ReportRun, IsNotedAndFindsItsFilesAndTheSupportLibrary) {
  RecordingShell shell;
  Names files;
  std::string noted;
  bool wasOpen = false;
  shell.whileRunning([&] {
    files = filesLeft();
    noted = identity();
    wasOpen = support_library::isOpen();
  });
  prepareFor(Vestra::KELVO);
  EXPECT_TRUE(handler.sendVestraData());
  EXPECT_EQ(files, (Names{".kelvo_vestrra.info", "kelvo_vestra.tcl", "usage_statistics_ext_kelvo.wdm"}));
  EXPECT_EQ(noted, "1700000000\n0\n8\n0\nid\n");
  EXPECT_TRUE(wasOpen);
  EXPECT_FALSE(support_library::isOpen());
  EXPECT_EQ(shell.commandLines().size(), 1U);
}

TEST_F(ReportRun, CleansUpWhateverItsStatus) {
  for (const int status : {0, 256, -1, 1, 9}) {
    SCOPED_TRACE(status);
    RecordingShell shell(status);
    prepareFor(Vestra::KELVO);
    EXPECT_EQ(handler.execVestraData(), status == 0);
    EXPECT_EQ(filesLeft(), Names{".kelvo_vestrra.info"});
    EXPECT_FALSE(support_library::isOpen());
  }
  EXPECT_FALSE(library.isHeldByAnother());
}

TEST_F(ReportRun, RemovesTheFilesOfItsOwnProductOnly) {
  writeFile(inVestraDirectory("tavlo_vestra.tcl"), "");
  writeFile(inVestraDirectory("usage_statistics_ext_tavlo.wdm"), "");
  writeFile(inVestraDirectory("usage_statistics_ext_kelvo.xml"), "");
  RecordingShell shell;
  prepareFor(Vestra::KELVO);
  handler.execVestraData();
  EXPECT_EQ(filesLeft(), (Names{".kelvo_vestrra.info", "tavlo_vestra.tcl", "usage_statistics_ext_kelvo.xml",
                                "usage_statistics_ext_tavlo.wdm"}));
}

TEST_F(ReportRun, DoesNotMindFilesThatAreGone) {
  RecordingShell shell;
  prepareFor(Vestra::KELVO);
  unlink(inVestraDirectory("kelvo_vestra.tcl").c_str());
  unlink(inVestraDirectory("usage_statistics_ext_kelvo.wdm").c_str());
  EXPECT_TRUE(handler.execVestraData());
}

TEST_F(ReportRun, DoesNotMindADirectoryThatIsGone) {
  RecordingShell shell;
  shell.whileRunning([&] {
    for (const std::string& name : filesLeft()) {
      unlink(inVestraDirectory(name).c_str());
    }
    rmdir((project / "vestra").c_str());
  });
  prepareFor(Vestra::KELVO);
  EXPECT_TRUE(handler.execVestraData());
}

TEST_F(ReportRun, KeepsTheFilesForTheDebugger) {
  const std::pair<const char*, bool> rows[] = {{"1", true}, {"0", true}, {" ", true}, {"", false}};
  for (const auto& [value, isKept] : rows) {
    const ScopedEnv debugging("CALVIX_VESTRA_DEBUG_EXT", value);
    RecordingShell shell;
    prepareFor(Vestra::KELVO);
    handler.execVestraData();
    EXPECT_EQ(exists(inVestraDirectory("kelvo_vestra.tcl")), isKept) << value;
    EXPECT_EQ(exists(inVestraDirectory("usage_statistics_ext_kelvo.wdm")), isKept) << value;
  }
}

TEST_F(ReportRun, ReadsTheDebugVariableAfterTheRun) {
  const ScopedEnv notYet("CALVIX_VESTRA_DEBUG_EXT", std::nullopt);
  RecordingShell shell;
  shell.whileRunning([] { setenv("CALVIX_VESTRA_DEBUG_EXT", "1", 1); });
  prepareFor(Vestra::KELVO);
  handler.execVestraData();
  EXPECT_TRUE(exists(inVestraDirectory("kelvo_vestra.tcl")));
}

TEST_F(ReportRun, ThrowsAFilesystemErrorOnAScriptThatCannotBeRemoved) {
  RecordingShell shell;
  prepareFor(Vestra::KELVO);
  unlink(inVestraDirectory("kelvo_vestra.tcl").c_str());
  writeFile(inVestraDirectory("kelvo_vestra.tcl/file"), "");
  EXPECT_THROW(handler.execVestraData(), boost::filesystem::filesystem_error);
  EXPECT_TRUE(exists(inVestraDirectory("usage_statistics_ext_kelvo.wdm")));
  EXPECT_FALSE(library.isHeldByAnother());
}

TEST_F(ReportRun, ThrowsAFilesystemErrorOnARulesFileThatCannotBeRemoved) {
  RecordingShell shell;
  prepareFor(Vestra::KELVO);
  unlink(inVestraDirectory("usage_statistics_ext_kelvo.wdm").c_str());
  writeFile(inVestraDirectory("usage_statistics_ext_kelvo.wdm/file"), "");
  EXPECT_THROW(handler.execVestraData(), boost::filesystem::filesystem_error);
  EXPECT_FALSE(exists(inVestraDirectory("kelvo_vestra.tcl")));
}

TEST_F(ReportRun, ThrowsAFilesystemErrorInAReadOnlyDirectory) {
  RecordingShell shell;
  prepareFor(Vestra::KELVO);
  const vestra_test::ScopedMode readOnly(project / "vestra", 0555);
  EXPECT_EQ(vestra_test::asOrdinaryUser([&]() -> std::string {
              try {
                return handler.execVestraData() ? "true" : "false";
              } catch (const boost::filesystem::filesystem_error&) {
                return "filesystem_error";
              }
            }),
            "filesystem_error");
  EXPECT_TRUE(exists(inVestraDirectory("kelvo_vestra.tcl")));
}

TEST_F(ReportRun, DeletesTheOldLogBeforeTheLabToolStarts) {
  writeFile(handler.getLogFileName(), "old");
  bool logWasThere = true;
  RecordingShell shell;
  shell.whileRunning([&] { logWasThere = exists(handler.getLogFileName()); });
  prepareFor(Vestra::TAVLO);
  handler.execVestraData();
  EXPECT_FALSE(logWasThere);
}

TEST_F(ReportRun, LeavesTheLogOfTheSimulatorAlone) {
  writeFile(handler.getLogFileName(), "old");
  RecordingShell shell;
  prepareFor(Vestra::KELVO);
  handler.execVestraData();
  EXPECT_EQ(readFile(handler.getLogFileName()), "old");
}

TEST_F(ReportRun, ThrowsAFilesystemErrorOnALogThatCannotBeRemovedAndRunsNothing) {
  RecordingShell shell;
  prepareFor(Vestra::TAVLO);
  writeFile(handler.getLogFileName() + "/file", "");
  EXPECT_THROW(handler.execVestraData(), boost::filesystem::filesystem_error);
  EXPECT_EQ(shell.commandLines(), Names{});
  EXPECT_TRUE(library.isHeldByAnother());
  EXPECT_TRUE(exists(inVestraDirectory("tavlo_vestra.tcl")));
}

// The support library.

TEST_F(ReportRun, IsFollowedByAnotherThatOpensTheSupportLibraryAgain) {
  RecordingShell shell;
  prepareFor(Vestra::KELVO);
  handler.execVestraData();
  prepareFor(Vestra::KELVO_ALT);
  EXPECT_TRUE(support_library::isOpen());
  handler.execVestraData();
  EXPECT_EQ(shell.commandLines().size(), 2U);
  EXPECT_FALSE(library.isHeldByAnother());
}

TEST_F(ReportRun, ClosesWhatSeveralPreparationsOpenedOnce) {
  RecordingShell shell;
  prepareFor(Vestra::KELVO);
  prepareFor(Vestra::KELVO);
  handler.execVestraData();
  EXPECT_FALSE(library.isHeldByAnother());
}

TEST_F(ReportRun, LeavesTheSupportLibraryOfAnotherHandlerOpen) {
  RecordingShell shell;
  prepareFor(Vestra::KELVO);
  handler.execVestraData();
  VestraHandler another;
  another.setProjectDirectory(project.path());
  ASSERT_TRUE(another.prepareVestraData());
  handler.execVestraData();
  EXPECT_TRUE(support_library::isOpen());
  another.execVestraData();
  EXPECT_FALSE(support_library::isOpen());
}

TEST_F(ReportRun, WithoutAToolRunsNothingAndLeavesEverything) {
  RecordingShell shell;
  prepareFor(Vestra::TAVLO);
  writeFile(handler.getLogFileName(), "old");
  library.nameTool(std::nullopt);
  EXPECT_EQ(errorOf([&] { handler.execVestraData(); }), "basic_string::_M_construct null not valid");
  EXPECT_EQ(shell.commandLines(), Names{});
  EXPECT_EQ(filesLeft(), (Names{".kelvo_vestrra.info", "tavlo_vestra.log", "tavlo_vestra.tcl",
                                "usage_statistics_ext_tavlo.wdm"}));
  EXPECT_TRUE(library.isHeldByAnother());
}

TEST_F(ReportRun, WithoutAToolHasCountedTheAttempt) {
  RecordingShell shell;
  prepareFor(Vestra::KELVO);
  library.nameTool(std::nullopt);
  EXPECT_THROW(handler.sendVestraData(), std::logic_error);
  EXPECT_EQ(identity(), "1700000000\n0\n8\n0\nid\n");
}

TEST(ReportRunWithoutEntryPoint, ThrowsWhatIsMissing) {
  const vestra_test::TemporaryDirectory project;
  const vestra_test::StandInLibrary library("no_exec_path");
  RecordingShell shell;
  VestraHandler handler;
  handler.setProjectDirectory(project.path());
  ASSERT_TRUE(handler.prepareVestraData());
  EXPECT_EQ(errorOf([&] { handler.execVestraData(); }),
            "libqvzcommonvestrasupport.so lacks oza_vestra_exec_path");
  EXPECT_EQ(shell.commandLines(), Names{});
}

// Sending: counted always, run when due.

TEST_F(ReportRun, CountsAsSentEvenWhenTheToolFails) {
  RecordingShell shell(256);
  prepareFor(Vestra::KELVO);
  EXPECT_TRUE(handler.sendVestraData());
}

TEST_F(ReportRun, IsNotStartedWhenNotDue) {
  writeIdentity("1699913600\n0\n7\n0\nid\n");
  RecordingShell shell;
  prepareFor(Vestra::KELVO);
  EXPECT_FALSE(handler.sendVestraData());
  EXPECT_EQ(shell.commandLines(), Names{});
  EXPECT_EQ(identity(), "1699913600\n0\n8\n0\nid\n");
  EXPECT_EQ(filesLeft(),
            (Names{".kelvo_vestrra.info", "kelvo_vestra.tcl", "usage_statistics_ext_kelvo.wdm"}));
  EXPECT_TRUE(support_library::isOpen());
}

TEST_F(ReportRun, OfEachProductSlotIsDueOnItsOwn) {
  RecordingShell shell;
  for (const auto product : {Vestra::KELVO, Vestra::KELVO_ALT}) {
    prepareFor(product);
    EXPECT_TRUE(handler.sendVestraData());
  }
  for (const auto product : {Vestra::KELVO, Vestra::KELVO_ALT, Vestra::TAVLO}) {
    prepareFor(product);
    EXPECT_FALSE(handler.sendVestraData());
  }
  EXPECT_EQ(shell.commandLines().size(), 2U);
  EXPECT_EQ(identity(), "1700000000\n1700000000\n12\n0\nid\n");
}

// A real shell and a real tool.

TEST_F(ReportRun, ByARealShellGivesTheToolItsArgumentsAndFillsTheLog) {
  writeFile(project / "tool", "#!/bin/sh\nprintf '<%s>' \"$@\"\necho problem >&2\n");
  chmod((project / "tool").c_str(), 0755);
  prepareFor(Vestra::TAVLO);
  library.nameTool(project / "tool");
  writeFile(handler.getLogFileName(), "old");
  EXPECT_TRUE(handler.execVestraData());
  EXPECT_EQ(readFile(handler.getLogFileName()),
            "<-mode><batch><-source><" + project.path() + "/vestra/tavlo_vestra.tcl><-notrace>problem\n");
}

TEST_F(ReportRun, ByARealShellTellsWhetherTheToolSucceeded) {
  prepareFor(Vestra::KELVO);
  library.nameTool("/bin/false");
  EXPECT_FALSE(handler.execVestraData());
  prepareFor(Vestra::KELVO);
  library.nameTool("/bin/true");
  EXPECT_TRUE(handler.execVestraData());
  prepareFor(Vestra::TAVLO);
  library.nameTool("/missing/tool");
  EXPECT_FALSE(handler.execVestraData());
}

}  // namespace
}  // namespace Oza
