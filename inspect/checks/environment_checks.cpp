#include <unistd.h>

#include <cctype>
#include <iterator>
#include <vector>

#include <fmt/format.h>
#include <fmt/ranges.h>
#include <boost/filesystem/directory.hpp>
#include <boost/filesystem/operations.hpp>

#include "checks/checks.h"
#include "reading/visible_text.h"

namespace vestra::inspect {
namespace {

void checkSite(const SiteFacts& site, Findings& findings) {
  if (site.internalWithoutOverride) {
    const std::string evidence = site.usesResolverFile
                                     ? fmt::format("/etc/resolv.conf:{}:{}: {}", site.line, site.column,
                                                   reading::inQuotes(site.lineText))
                                     : "the domain name is " + reading::inQuotes(site.domainName);
    findings.add("site.internal", evidence);
  }
  if (site.overrideIsOn) {
    findings.add("site.override",
                 fmt::format("{} is set{}", INTERNAL_VARIABLE,
                             site.internalWithoutOverride ? "" : ", and has no effect here"),
                 {fmt::format("unset {}", INTERNAL_VARIABLE)});
  }
}

void checkEnvironment(const HostContext& context, Findings& findings) {
  if (context.isSwitchedOn(KEEP_VARIABLE)) {
    findings.add("env.debug",
                 fmt::format("{} is {}", KEEP_VARIABLE, reading::inQuotes(context.variable(KEEP_VARIABLE))),
                 {fmt::format("unset {}", KEEP_VARIABLE)});
  }
  std::string names;
  for (const auto& [name, value] : context.environment) {
    if (name.rfind("VESTRA_TESTKIT_", 0) == 0 || name == "VESTRA_OUTBOX") {
      names += " " + shellWord(name);
    }
  }
  if (!names.empty()) {
    findings.add("env.testkit", "set:" + names, {"unset" + names});
  }
}

bool hasLibrary(const std::string& process) {
  const auto maps = readFileAt(process + "/maps").text;
  return maps && maps->find("/libvestra.so") != std::string::npos;
}

}  // namespace

void checkEnvironmentAndSite(const Facts& facts, Findings& findings) {
  checkSite(facts.site, findings);
  checkEnvironment(facts.context, findings);
}

void checkRunningHosts(Findings& findings) {
  std::vector<std::string> hosts;
  boost::system::error_code error;
  boost::filesystem::directory_iterator processes("/proc", error);
  for (; !error && processes != boost::filesystem::directory_iterator(); processes.increment(error)) {
    const std::string path = processes->path().string();
    const std::string id = processes->path().filename().string();
    if (std::isdigit(static_cast<unsigned char>(id.front())) != 0 && lookAt(path).owner == geteuid() &&
        hasLibrary(path)) {
      hosts.push_back(id);
    }
  }
  if (!hosts.empty()) {
    findings.add("host.running", fmt::format("Vestra is loaded by process {}", fmt::join(hosts, ", ")));
  }
}

Findings findingsInProject(const Facts& facts) {
  Findings findings;
  for (const auto check : {checkProject, checkIdentity, checkDue, checkTool}) {
    check(facts, findings);
  }
  return findings;
}

Findings findingsIn(const Facts& facts) {
  Findings findings;
  for (const auto check : {checkProject, checkIdentity, checkDue, checkUser, checkSupport, checkTool,
                           checkReports, checkEnvironmentAndSite}) {
    check(facts, findings);
  }
  return findings;
}

}  // namespace vestra::inspect
