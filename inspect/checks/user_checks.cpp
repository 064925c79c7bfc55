#include <sys/vfs.h>

#include <linux/magic.h>

#include <unistd.h>

#include <cctype>

#include <fmt/format.h>
#include <fmt/ranges.h>
#include <boost/algorithm/string/trim.hpp>
#include <boost/filesystem/directory.hpp>
#include <boost/filesystem/operations.hpp>

#include "checks/checks.h"
#include "reading/visible_text.h"

namespace vestra::inspect {
namespace {

Fixes lineRemoval(const UserFacts& user, std::size_t line) {
  return editOf(user.file, fmt::format("{}d", line));
}

/// An empty value ahead of all others is what reports carry, whatever follows.
void checkFirstLine(const Facts& facts, Findings& findings) {
  const UserFacts& user = facts.user;
  const std::vector<std::string> lines = linesOf(*user.file.text);
  for (std::size_t i = 0; i < lines.size(); ++i) {
    const std::string line = boost::algorithm::trim_copy(lines[i]);
    if (line.rfind("RandomID=", 0) == 0 && line.find('=', 9) == std::string::npos) {
      if (line.size() == 9) {
        findings.add("settings.empty_first", fmt::format("{}:{}: \"RandomID=\"", user.file.path, i + 1),
                     lineRemoval(user, i + 1));
      }
      return;
    }
  }
}

void checkIdentifier(const Facts& facts, Findings& findings) {
  const UserFacts& user = facts.user;
  if (user.randomId.empty()) {
    return;
  }
  const std::string says =
      fmt::format("{}:{}: {}", user.file.path, user.line, facts.secret(user.randomId, "<user-id>"));
  if (user.randomId.find('\0') != std::string::npos) {
    findings.add("settings.id_nul", says, lineRemoval(user, user.line));
  } else if (holdsScript(user.randomId)) {
    findings.add("settings.id_script", says, lineRemoval(user, user.line));
  }
}

void checkWriting(const UserFacts& user, Findings& findings) {
  const std::string& path = user.file.path;
  if (!user.makesNew) {
    const FileSnapshot place = lookAt(user.obstacle.empty() || user.file.link ? path : user.obstacle);
    findings.add("settings.unwritable", place.path + " cannot be written",
                 place.path == path && place.isRegular() ? modeChange(place, "u+rw")
                 : place.kind == FileKind::directory     ? modeChange(place, "u+rwx")
                                                         : Fixes());
  } else if (user.file.exists() && !user.file.text) {
    findings.add("settings.unreadable", path + " cannot be read", modeChange(user.file, "u+r"));
  } else if (user.file.text && !user.file.text->empty() && user.file.text->back() != '\n') {
    findings.add("settings.no_newline", fmt::format("the last line of {} has no line end", path),
                 {"echo >> " + shellWord(path)});
  }
}

bool isVolatile(const std::string& directory) {
  struct statfs system {};
  return statfs(directory.c_str(), &system) == 0 &&
         (system.f_type == TMPFS_MAGIC || system.f_type == OVERLAYFS_SUPER_MAGIC);
}

void checkHome(const Facts& facts, Findings& findings) {
  const std::string home = facts.context.variable("HOME");
  if (home.empty()) {
    findings.add("home.unset", "HOME is not set; the settings are " + facts.user.file.path);
  } else if (home.front() != '/') {
    findings.add("home.relative", "HOME is " + reading::inQuotes(home));
  } else if (isVolatile(home)) {
    findings.add("home.volatile", home + " lies on a file system in memory or of a container");
  }
  if (facts.user.makesNew && isFull(home)) {
    findings.add("settings.full", "no space or no inodes are left in " + home);
  }
}

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
                             site.internalWithoutOverride ? "" : ", and has no effect here"));
  }
}

void checkEnvironment(const HostContext& context, Findings& findings) {
  if (context.isSwitchedOn(KEEP_VARIABLE)) {
    findings.add("env.debug",
                 fmt::format("{} is {}", KEEP_VARIABLE, reading::inQuotes(context.variable(KEEP_VARIABLE))));
  }
  std::string names;
  for (const auto& [name, value] : context.environment) {
    if (name.rfind("VESTRA_TESTKIT_", 0) == 0 || name == "VESTRA_OUTBOX") {
      names += " " + name;
    }
  }
  if (!names.empty()) {
    findings.add("env.testkit", "set:" + names);
  }
}

bool hasLibrary(const std::string& process) {
  const auto maps = readFileAt(process + "/maps").text;
  return maps && maps->find("/libvestra.so") != std::string::npos;
}

}  // namespace

bool holdsScript(const std::string& identifier) {
  return identifier.find_first_of("\"$[]\\") != std::string::npos;
}

void checkUser(const Facts& facts, Findings& findings) {
  const UserFacts& user = facts.user;
  checkHome(facts, findings);
  if (user.file.exists() && !user.file.isRegular()) {
    findings.add("settings.special",
                 fmt::format("{} is a {}, no file", user.file.path, nameOf(user.file.kind)));
    return;
  }
  if (user.file.text) {
    checkFirstLine(facts, findings);
  }
  checkIdentifier(facts, findings);
  if (user.randomId.empty()) {
    checkWriting(user, findings);
  }
}

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
  for (const auto check : {checkProject, checkTool}) {
    check(facts, findings);
  }
  return findings;
}

Findings findingsIn(const Facts& facts) {
  Findings findings;
  for (const auto check :
       {checkProject, checkUser, checkSupport, checkTool, checkReports, checkEnvironmentAndSite}) {
    check(facts, findings);
  }
  return findings;
}

}  // namespace vestra::inspect
