// Hosts as they are started in real life: programs of their own, which find the
// support library by the loader's search path or not at all.

#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>

#include <boost/filesystem.hpp>

#include "support/scenario/scenario.h"
#include "support/scoped_env.h"
#include "support/temporary_directory.h"

namespace vestra_test {
namespace {

namespace fs = boost::filesystem;

/// A program in a home and a project of its own.
class Host : public Test {
 protected:
  struct End {
    int status = 0;
    std::string output;
  };

  Host() : home("HOME", directory / "home"), outbox("VESTRA_OUTBOX", directory / "outbox") {
    fs::create_directory(directory / "home");
    fs::create_directory(directory / "project");
  }

  /// Starts a host through the shell, with its two streams as one.
  End start(const std::string& program, const std::string& arguments) {
    const std::string output = directory / "output";
    End end;
    end.status = std::system((program + " " + arguments + " > " + output + " 2>&1 < /dev/null").c_str());
    end.output = readFile(output);
    return end;
  }

  std::string project() const { return directory / "project"; }
  static std::string supportDirectory() { return fs::path(supportLibraryPath()).parent_path().string(); }

  TemporaryDirectory directory;
  ScopedEnv home;
  ScopedEnv outbox;
  ScopedEnv debug{"CALVIX_VESTRA_DEBUG_EXT", std::nullopt};
};

TEST_F(Host, FindsTheSupportLibraryByTheLoadersPath) {
  const ScopedEnv path("LD_LIBRARY_PATH", supportDirectory());
  const End end = start(SIMULATOR, project());
  EXPECT_EQ(end.status, 0);
  EXPECT_THAT(end.output, HasSubstr("simulator: the report was handed over\n"));
  EXPECT_THAT(namesIn(project() + "/vestra"),
              ElementsAre(".kelvo_vestrra.info", "usage_statistics_ext_kelvo.html",
                          "usage_statistics_ext_kelvo.xml"));
  EXPECT_THAT(start(SIMULATOR, project()).output, "simulator: no report today\n");
}

TEST_F(Host, OfTheLabToolHasTheToolsOutputInTheLog) {
  const ScopedEnv path("LD_LIBRARY_PATH", supportDirectory());
  const End end = start(LAB_TOOL, project());
  EXPECT_EQ(end.output,
            "lab tool: the report was handed over; its log is " + project() + "/vestra/tavlo_vestra.log\n");
  EXPECT_THAT(readFile(project() + "/vestra/tavlo_vestra.log"), HasSubstr("vestra-design-tool: "));
}

TEST_F(Host, WithoutASupportLibrarySendsNothingAndKeepsTheRules) {
  const ScopedEnv path("LD_LIBRARY_PATH", std::nullopt);
  const End end = start(SIMULATOR, project());
  EXPECT_EQ(end.status, 0);
  EXPECT_EQ(end.output, "simulator: no report today\n");
  EXPECT_THAT(namesIn(project() + "/vestra"),
              ElementsAre(".kelvo_vestrra.info", "usage_statistics_ext_kelvo.wdm"));
  EXPECT_EQ(readFile(project() + "/vestra/.kelvo_vestrra.info"), "");
}

TEST_F(Host, OutlivesASupportLibraryWithoutAnAnswer) {
  const ScopedEnv path("LD_LIBRARY_PATH", supportDirectory());
  const ScopedEnv null("VESTRA_TESTKIT_NULL", "regid");
  for (const char* program : {SIMULATOR, LAB_TOOL}) {
    SCOPED_TRACE(program);
    const End end = start(program, project());
    EXPECT_EQ(end.status, 0);
    EXPECT_THAT(end.output, HasSubstr("no report: basic_string::_M_construct null not valid\n"));
  }
}

TEST_F(Host, WithoutACallLeavesNoTrace) {
  const ScopedEnv path("LD_LIBRARY_PATH", supportDirectory());
  const End end = start(SIMULATOR, "");
  EXPECT_EQ(WEXITSTATUS(end.status), 1);
  EXPECT_THAT(namesIn(directory / "home"), IsEmpty());
  EXPECT_THAT(namesIn(project()), IsEmpty());
}

TEST_F(Host, WithABlankInTheProjectsNameHasASplitCommandLine) {
  const ScopedEnv path("LD_LIBRARY_PATH", supportDirectory());
  const std::string blank = directory / "my project";
  fs::create_directory(blank);
  const End end = start(SIMULATOR, "'" + blank + "'");
  EXPECT_THAT(end.output, HasSubstr("simulator: the report was handed over\n"));
  EXPECT_THAT(namesIn(blank + "/vestra"), ElementsAre(".kelvo_vestrra.info"));
}

TEST_F(Host, InTheMakersNetworkMarksTheReportAsATest) {
  // Needs a host name of its own: only root may make one.
  if (start("unshare --uts", "true").status != 0) {
    GTEST_SKIP() << "no namespace for the domain name can be made here";
  }
  const ScopedEnv path("LD_LIBRARY_PATH", supportDirectory());
  const ScopedEnv debugging("CALVIX_VESTRA_DEBUG_EXT", "1");
  const std::string inMakersNetwork = "domainname lab.CALVIX.example; ";
  const auto startThere = [&](const std::string& variables) {
    fs::remove_all(project());
    start("unshare --uts sh -c '" + inMakersNetwork + variables + std::string(SIMULATOR) + " " + project() +
              "'",
          "");
    return readFile(project() + "/vestra/kelvo_vestra.tcl");
  };
  const std::string marked = " -regid \"VESTRA_TEST_KELVO_stand-in-registration\" ";
  EXPECT_THAT(startThere(""), HasSubstr(marked));
  EXPECT_THAT(startThere("CALVIX_VESTRA_INTERNAL_TRANSMIT= "), HasSubstr(marked));
  EXPECT_THAT(startThere("CALVIX_VESTRA_INTERNAL_TRANSMIT=0 "),
              HasSubstr(" -regid \"stand-in-registration\" "));
}

}  // namespace
}  // namespace vestra_test
