#include <sys/statvfs.h>

#include <fmt/format.h>

#include "checks/checks.h"
#include "reading/visible_text.h"

namespace vestra::inspect {
namespace {

/// What the shell reads as something else than a part of a word.
constexpr const char* SHELL_CHARACTERS = " \t\n;&|<>()$`\\\"'*?[]#~=%!{}";

void checkDirectory(const ProjectFacts& project, Findings& findings) {
  if (project.root.kind == FileKind::missing) {
    findings.add("project.missing", project.directory + " does not exist",
                 {"mkdir -p " + shellWord(project.directory)});
    return;
  }
  const std::string place = project.directory + "/vestra";
  const LookedFile inPlace = lookAt(place);
  std::string obstacle;
  if (inPlace.exists() && inPlace.kind != FileKind::directory) {
    findings.add("project.vestra_is_file", fmt::format("{} is no directory", place),
                 {"rm " + shellWord(place)});
  } else if (!inPlace.exists() && !canHoldFiles(place, obstacle)) {
    findings.add("project.unwritable", fmt::format("nothing can be made in {}", obstacle),
                 {"chmod u+rwx " + shellWord(obstacle)});
  } else if (inPlace.exists() && !mayChangeDirectory(place)) {
    const bool isWritten = project.identityFile.writable;
    findings.add(isWritten ? "project.script_locked" : "project.unwritable",
                 fmt::format("nothing can be made or removed in {} (mode {})", place, modeText(inPlace.mode)),
                 {"chmod u+rwx " + shellWord(place)});
  }
  if (inPlace.exists() && (inPlace.mode & 0002) != 0) {
    findings.add("project.shared_writable", fmt::format("{} has mode {}", place, modeText(inPlace.mode)),
                 {"chmod o-w " + shellWord(place)});
  }
  if (inPlace.kind == FileKind::missing) {
    findings.add("send.none", place + " is missing");
  }
}

void checkFileSystem(const ProjectFacts& project, Findings& findings) {
  struct statvfs system {};
  if (statvfs(project.directory.c_str(), &system) != 0) {
    return;
  }
  if ((system.f_flag & ST_RDONLY) != 0) {
    findings.add("project.readonly", project.directory + " lies on a read-only file system");
  } else if (system.f_bavail == 0 || (system.f_files != 0 && system.f_favail == 0)) {
    findings.add("project.full", "there is no room in " + project.directory);
  }
}

void checkName(const ProjectFacts& project, Findings& findings) {
  const std::size_t found = project.directory.find_first_of(SHELL_CHARACTERS);
  if (found != std::string::npos) {
    findings.add("project.shell",
                 fmt::format("{} holds {} at byte {}; of the log, the shell would write {}",
                             reading::inQuotes(project.directory, 400),
                             reading::inQuotes(project.directory.substr(found, 1)), found + 1,
                             reading::inQuotes(project.directory.substr(0, found))),
                 {fmt::format("ln -s {} ~/project", shellWord(project.directory))});
  }
}

}  // namespace

void checkProject(const Facts& facts, Findings& findings) {
  checkDirectory(facts.project, findings);
  checkFileSystem(facts.project, findings);
  checkName(facts.project, findings);
}

}  // namespace vestra::inspect
