#include <boost/filesystem.hpp>

#include "handler/command_line.h"
#include "handler/report_fixture.h"
#include "handler/support_library.h"
#include "support/interposed/c_library.h"

namespace Oza {
namespace {

using Names = std::vector<std::string>;
using boost::filesystem::filesystem_error;

TEST(CommandLine, QuotesNothing) {
  EXPECT_EQ(commandLine("env X=1 'the tool'", "/a b;$c//script", ""),
            "env X=1 'the tool' -mode batch -source /a b;$c//script -notrace ");
  EXPECT_EQ(commandLine("", "script", redirectionTo("/a b/log")),
            " -mode batch -source script -notrace  > /a b/log 2>&1");
}

/// A report that is prepared and waits for its run.
class ReportRun : public ReportFixture {
 protected:
  ReportRun() { writeIdentity(identityText("0", "0", "7", "0", "id")); }

  void prepareFor(Vestra::ProductType product) {
    handler.setProductType(product);
    ASSERT_TRUE(handler.prepareVestraData());
  }

  Names filesLeft() const { return namesIn(project / "vestra"); }

  void replaceByFullDirectory(const std::string& path) {
    unlink(path.c_str());
    writeFile(path + "/file", "");
  }

  ScopedEnv noDebugging{"CALVIX_VESTRA_DEBUG_EXT", std::nullopt};
};

TEST_F(ReportRun, HasTheCommandLineOfItsProduct) {
  library.nameTool("/opt/design/bin/tool");
  RecordingShell shell;
  prepareFor(Vestra::KELVO);
  EXPECT_TRUE(handler.execVestraData());
  prepareFor(Vestra::TAVLO);
  EXPECT_TRUE(handler.execVestraData());
  EXPECT_EQ(shell.commandLines(),
            (Names{commandLine("/opt/design/bin/tool", inVestraDirectory("kelvo_vestra.tcl"), ""),
                   commandLine("/opt/design/bin/tool", inVestraDirectory("tavlo_vestra.tcl"),
                               redirectionTo(inVestraDirectory("tavlo_vestra.log")))}));
}

TEST_F(ReportRun, IsCountedAndFindsItsFilesAndTheSupportLibrary) {
  RecordingShell shell;
  Names files;
  std::string counted;
  bool wasOpen = false;
  shell.whileRunning([&] {
    files = filesLeft();
    counted = identity();
    wasOpen = support_library::isOpen();
  });
  prepareFor(Vestra::KELVO);
  EXPECT_TRUE(handler.sendVestraData());
  EXPECT_THAT(files,
              ElementsAre(".kelvo_vestrra.info", "kelvo_vestra.tcl", "usage_statistics_ext_kelvo.wdm"));
  EXPECT_EQ(counted, identityText("1700000000", "0", "8", "0", "id"));
  EXPECT_TRUE(wasOpen);
  EXPECT_FALSE(support_library::isOpen());
  EXPECT_THAT(shell.commandLines(), SizeIs(1));
}

TEST_F(ReportRun, CleansUpWhateverItsStatus) {
  for (const int status : {0, 256, -1, 1, 9}) {
    SCOPED_TRACE(status);
    RecordingShell shell(status);
    prepareFor(Vestra::KELVO);
    EXPECT_EQ(handler.execVestraData(), status == 0);
    EXPECT_THAT(filesLeft(), ElementsAre(".kelvo_vestrra.info"));
    EXPECT_FALSE(support_library::isOpen());
  }
  EXPECT_FALSE(library.isHeldByAnother());
}

TEST_F(ReportRun, RemovesTheFilesOfItsOwnProductOnly) {
  const Names others{"tavlo_vestra.log", "tavlo_vestra.tcl", "usage_statistics_ext_kelvo.xml",
                     "usage_statistics_ext_tavlo.wdm"};
  for (const std::string& name : others) {
    writeFile(inVestraDirectory(name), "old");
  }
  RecordingShell shell;
  prepareFor(Vestra::KELVO);
  handler.execVestraData();
  EXPECT_THAT(filesLeft(), ElementsAre(".kelvo_vestrra.info", others[0], others[1], others[2], others[3]));
  EXPECT_EQ(readFile(handler.getLogFileName()), "old");
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

TEST_F(ReportRun, KeepsTheFilesForTheDebugVariableThatIsSetAfterIt) {
  for (const char* value : {"", "0"}) {
    RecordingShell shell;
    shell.whileRunning([=] { setenv("CALVIX_VESTRA_DEBUG_EXT", value, 1); });
    prepareFor(Vestra::KELVO);
    handler.execVestraData();
    EXPECT_EQ(exists(inVestraDirectory("kelvo_vestra.tcl")), *value != '\0');
    EXPECT_EQ(exists(inVestraDirectory("usage_statistics_ext_kelvo.wdm")), *value != '\0');
  }
}

TEST_F(ReportRun, ThrowsAFilesystemErrorWhenAFileCannotBeRemoved) {
  const char* const rules = "usage_statistics_ext_kelvo.wdm";
  RecordingShell shell;
  prepareFor(Vestra::KELVO);
  replaceByFullDirectory(inVestraDirectory(rules));
  EXPECT_THROW(handler.execVestraData(), filesystem_error);
  EXPECT_FALSE(exists(inVestraDirectory("kelvo_vestra.tcl")));
  boost::filesystem::remove_all(inVestraDirectory(rules));
  prepareFor(Vestra::KELVO);
  replaceByFullDirectory(inVestraDirectory("kelvo_vestra.tcl"));
  EXPECT_THROW(handler.execVestraData(), filesystem_error);
  EXPECT_TRUE(exists(inVestraDirectory(rules)));
  EXPECT_FALSE(library.isHeldByAnother());
}

TEST_F(ReportRun, ThrowsAFilesystemErrorInAReadOnlyDirectory) {
  RecordingShell shell;
  prepareFor(Vestra::KELVO);
  const ScopedMode readOnly(project / "vestra", 0555);
  EXPECT_EQ(asOrdinaryUser([&]() -> std::string {
              try {
                return handler.execVestraData() ? "true" : "false";
              } catch (const filesystem_error&) {
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

TEST_F(ReportRun, IsNotStartedWhenTheOldLogCannotBeDeleted) {
  RecordingShell shell;
  prepareFor(Vestra::TAVLO);
  replaceByFullDirectory(handler.getLogFileName());
  EXPECT_THROW(handler.sendVestraData(), filesystem_error);
  EXPECT_THAT(shell.commandLines(), IsEmpty());
  EXPECT_EQ(identity(), identityText("1700000000", "0", "8", "0", "id"));
  EXPECT_TRUE(library.isHeldByAnother());
  EXPECT_TRUE(exists(inVestraDirectory("tavlo_vestra.tcl")));
}

// The support library.

TEST_F(ReportRun, ClosesWhatSeveralPreparationsOpenedOnce) {
  RecordingShell shell;
  prepareFor(Vestra::KELVO);
  handler.execVestraData();
  prepareFor(Vestra::KELVO);
  prepareFor(Vestra::KELVO_ALT);
  EXPECT_TRUE(support_library::isOpen());
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
  EXPECT_TRUE(handler.prepareVestraData());
  handler.execVestraData();
  EXPECT_TRUE(support_library::isOpen());
  another.execVestraData();
  EXPECT_FALSE(support_library::isOpen());
}

TEST_F(ReportRun, WithoutAToolIsCountedAndLeavesEverything) {
  RecordingShell shell;
  prepareFor(Vestra::TAVLO);
  writeFile(handler.getLogFileName(), "old");
  library.nameTool(std::nullopt);
  EXPECT_EQ(errorOf([&] { handler.sendVestraData(); }), "basic_string::_M_construct null not valid");
  EXPECT_THAT(shell.commandLines(), IsEmpty());
  EXPECT_EQ(identity(), identityText("1700000000", "0", "8", "0", "id"));
  EXPECT_THAT(filesLeft(), ElementsAre(".kelvo_vestrra.info", "tavlo_vestra.log", "tavlo_vestra.tcl",
                                       "usage_statistics_ext_tavlo.wdm"));
  EXPECT_TRUE(library.isHeldByAnother());
}

TEST(ReportRunWithoutEntryPoint, ThrowsWhatIsMissing) {
  const TemporaryDirectory project;
  const StandInLibrary library("no_exec_path");
  RecordingShell shell;
  VestraHandler handler;
  handler.setProjectDirectory(project.path());
  ASSERT_TRUE(handler.prepareVestraData());
  EXPECT_EQ(errorOf([&] { handler.execVestraData(); }),
            "libqvzcommonvestrasupport.so lacks oza_vestra_exec_path");
  EXPECT_THAT(shell.commandLines(), IsEmpty());
}

// Sending: counted always, run when due.

TEST_F(ReportRun, IsStartedOnceADayForEachSlotEvenWhenTheToolFails) {
  RecordingShell shell(256);
  for (const auto product : {Vestra::KELVO, Vestra::KELVO_ALT}) {
    prepareFor(product);
    EXPECT_TRUE(handler.sendVestraData());
  }
  for (const auto product : {Vestra::TAVLO, Vestra::KELVO_ALT, Vestra::KELVO}) {
    prepareFor(product);
    EXPECT_FALSE(handler.sendVestraData());
  }
  EXPECT_THAT(shell.commandLines(), SizeIs(2));
  EXPECT_EQ(identity(), identityText("1700000000", "1700000000", "12", "0", "id"));
  EXPECT_THAT(filesLeft(), ElementsAre(".kelvo_vestrra.info", "kelvo_vestra.tcl", "tavlo_vestra.tcl",
                                       "usage_statistics_ext_kelvo.wdm", "usage_statistics_ext_tavlo.wdm"));
  EXPECT_TRUE(support_library::isOpen());
}

}  // namespace
}  // namespace Oza
