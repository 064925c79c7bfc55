#include <sys/vfs.h>

#include <linux/magic.h>

#include <cctype>

#include <fmt/format.h>
#include <boost/algorithm/string/case_conv.hpp>
#include <boost/algorithm/string/trim.hpp>

#include "checks/checks.h"
#include "reading/visible_text.h"

namespace vestra::inspect {
namespace {

bool isUuid(const std::string& text) {
  const std::string form = "xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx";
  bool fits = text.size() == form.size();
  for (std::size_t i = 0; fits && i < form.size(); ++i) {
    fits = form[i] == '-' ? text[i] == '-' : std::isxdigit(static_cast<unsigned char>(text[i])) != 0;
  }
  return fits;
}

Fixes lineRemoval(const UserFacts& user, std::size_t line) {
  return editOf(user.file, fmt::format("{}d", line));
}

/// A line that a person would take for an identifier, and the library does not.
bool isNearMiss(const std::string& line) {
  const std::string lower = boost::algorithm::to_lower_copy(line);
  const std::size_t word = lower.find("randomid");
  return word != std::string::npos && lower.find('=', word) != std::string::npos;
}

void checkLines(const Facts& facts, Findings& findings) {
  const UserFacts& user = facts.user;
  const std::vector<std::string> lines = linesOf(*user.file.text);
  bool isFirst = true;
  for (std::size_t i = 0; i < lines.size(); ++i) {
    const std::string line = boost::algorithm::trim_copy(lines[i]);
    const std::string says =
        fmt::format("{}:{}: {}", user.file.path, i + 1, facts.secret(line, "<settings-line>"));
    const bool isPair = line.rfind("RandomID=", 0) == 0 && line.find('=', 9) == std::string::npos;
    if (isPair && isFirst && line.size() == 9) {
      findings.add("settings.empty_first", says, lineRemoval(user, i + 1));
    } else if (!isPair && isNearMiss(line)) {
      findings.add("settings.near_miss", says);
    }
    isFirst = isFirst && !isPair;
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
  } else if (!isUuid(user.randomId)) {
    findings.add("settings.id_form", says + " is no UUID");
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
  } else if (user.file.kind == FileKind::missing) {
    findings.add("settings.missing", path + " is missing");
  } else if (!user.file.text) {
    findings.add("settings.unreadable", path + " cannot be read", modeChange(user.file, "u+r"));
  } else if (!user.file.text->empty() && user.file.text->back() != '\n') {
    findings.add("settings.no_newline", fmt::format("the last line of {} has no line end", path),
                 {"echo >> " + shellWord(path)});
  } else if (user.keepsNew) {
    findings.add("settings.none", path + " holds no identifier");
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
    checkLines(facts, findings);
  }
  checkIdentifier(facts, findings);
  if (user.randomId.empty()) {
    checkWriting(user, findings);
  }
}

}  // namespace vestra::inspect
