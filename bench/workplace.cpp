#include "workplace.h"

#include "process.h"
#include "support/files.h"

namespace vestra_bench {
namespace {

constexpr const char* SCRIPT = "kelvo_vestra.tcl";
constexpr const char* RULES = "usage_statistics_ext_kelvo.wdm";
constexpr const char* IDENTITY = ".kelvo_vestrra.info";

std::string identity(Report report) {
  const std::string lastSent = report == Report::DUE ? "0" : "9999999999";
  return lastSent + "\n0\n42\n0\n5f0c2a39-3a57-4d4e-9f0b-6d6d2f9f4d11\n";
}

}  // namespace

Workplace::Workplace()
    : homeVariable("HOME", home.path()),
      loaderPath("LD_LIBRARY_PATH", SUPPORT_LIBRARY_DIRECTORY),
      tool("VESTRA_TESTKIT_EXEC_PATH", "true"),
      registration("VESTRA_TESTKIT_REGID", "registration"),
      environment("VESTRA_TESTKIT_ENVIRONMENT",
                  "os#Linux#cpu#fast#ram#16 GB#a#1#b#2#c#3#date_generated#2026-11-21#beta#FALSE") {
  vestra_test::writeFile(home / ".Calvix/Common/2018.2/vestra",
                         "RandomID=0d7bb6a4-9d36-4b0e-8a44-3b8e7a8c4f52\n");
}

void Workplace::makeReport(std::size_t items) {
  vestra_test::writeFile(inProject(IDENTITY), identity(Report::NOT_DUE));
  outputOf({SEND_REPORT, std::to_string(items), project()});
  script = vestra_test::readFile(inProject(SCRIPT));
  rules = vestra_test::readFile(inProject(RULES));
}

void Workplace::restore(Report report) const {
  vestra_test::writeFile(inProject(SCRIPT), script);
  vestra_test::writeFile(inProject(RULES), rules);
  vestra_test::writeFile(inProject(IDENTITY), identity(report));
}

std::string Workplace::scriptFile() const { return inProject(SCRIPT); }

std::string Workplace::inProject(const std::string& name) const {
  return projectDirectory / ("vestra/" + name);
}

}  // namespace vestra_bench
