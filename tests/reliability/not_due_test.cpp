// Every system call that a report which is not due makes about its own files, and why
// there is none more.

#include "reliability/sanitized.h"
#include "reliability/system_calls.h"
#include "reliability/watched_host.h"

namespace vestra_test {
namespace {

/// Calls about the files of the workplace, and those that block a signal. Which of several
/// calls asks for a status is the C library's and Boost's choice.
std::vector<std::string> callsAboutTheReport(const Workplace& workplace, const HostEnd& end) {
  const std::string base = workplace.home().substr(0, workplace.home().size() - std::string("home").size());
  std::vector<std::string> lines;
  for (const SystemCall& call : end.calls) {
    const std::string name = asksForStatus(call.number) ? "stat" : nameOf(call.number);
    if (call.subject.rfind(base, 0) == 0) {
      const bool isTemporary = call.subject.find("/.vestra-") != std::string::npos;
      lines.push_back(name + " " + (isTemporary ? "TEMPORARY FILE" : call.subject.substr(base.size())));
    } else if (name.rfind("rt_sig", 0) == 0) {
      lines.push_back(name);
    }
  }
  return lines;
}

TEST(ReportNotDue, SystemCallsAboutItsFilesAreThese) {
  if (const auto reason = whyNothingIsTraced()) {
    GTEST_SKIP() << *reason;
  }
  if (SANITIZED) {
    GTEST_SKIP() << "a sanitizer makes system calls of its own";
  }
  const Workplace workplace(KNOWN_SIMULATOR);
  writeFile(workplace.identityFile(), identityText("9999999999", "0", "7", "0", KNOWN_PROJECT_ID));
  ASSERT_EQ(runHost(workplace.start()).outcome, "answer false");
  const HostEnd end = runHost(workplace.start(), {Disturbance::WATCH});

  EXPECT_EQ(end.outcome, "answer false");
  EXPECT_THAT(callsAboutTheReport(workplace, end),
              ElementsAre(
                  // The settings are read to their end.
                  "openat home/.Calvix/Common/2018.2/vestra",   //
                  "stat home/.Calvix/Common/2018.2/vestra",     //
                  "pread64 home/.Calvix/Common/2018.2/vestra",  //
                  "close home/.Calvix/Common/2018.2/vestra",
                  // The identity is read while no other host writes it.
                  "openat project/vestra/.kelvo_vestrra.info",   //
                  "stat project/vestra/.kelvo_vestrra.info",     //
                  "fstatfs project/vestra/.kelvo_vestrra.info",  //
                  "fcntl project/vestra/.kelvo_vestrra.info",    //
                  "pread64 project/vestra/.kelvo_vestrra.info",  //
                  "fcntl project/vestra/.kelvo_vestrra.info",    //
                  "close project/vestra/.kelvo_vestrra.info",
                  // The rules file, which holds its text already.
                  "openat project/vestra/usage_statistics_ext_kelvo.wdm",   //
                  "stat project/vestra/usage_statistics_ext_kelvo.wdm",     //
                  "pread64 project/vestra/usage_statistics_ext_kelvo.wdm",  //
                  "close project/vestra/usage_statistics_ext_kelvo.wdm",
                  // The script, by a temporary file. No stale one is in the directory.
                  "rt_sigprocmask",                             //
                  "stat project/vestra/kelvo_vestra.tcl",       //
                  "openat TEMPORARY FILE",                      //
                  "stat TEMPORARY FILE",                        //
                  "lgetxattr project/vestra/kelvo_vestra.tcl",  //
                  "fgetxattr TEMPORARY FILE",                   //
                  "fchmod TEMPORARY FILE",                      //
                  "pwrite64 TEMPORARY FILE",                    //
                  "rename project/vestra/kelvo_vestra.tcl",     //
                  "openat project/vestra/",                     //
                  "stat project/vestra",                        //
                  "getdents64 project/vestra",                  //
                  "getdents64 project/vestra",                  //
                  "close project/vestra",                       //
                  "close project/vestra/kelvo_vestra.tcl",      //
                  "rt_sigprocmask",
                  // The identity again, with the attempt counted.
                  "openat project/vestra/.kelvo_vestrra.info",    //
                  "stat project/vestra/.kelvo_vestrra.info",      //
                  "rt_sigprocmask",                               //
                  "fstatfs project/vestra/.kelvo_vestrra.info",   //
                  "fcntl project/vestra/.kelvo_vestrra.info",     //
                  "pread64 project/vestra/.kelvo_vestrra.info",   //
                  "pwrite64 project/vestra/.kelvo_vestrra.info",  //
                  "rt_sigprocmask",                               //
                  "close project/vestra/.kelvo_vestrra.info"));
}

}  // namespace
}  // namespace vestra_test
