#include <fmt/format.h>

#include "checks/checks.h"
#include "reading/visible_text.h"

namespace vestra::inspect {
namespace {

void checkDirectory(const ProjectFacts& project, Findings& findings) {
  const FileSnapshot vestra = lookAt(project.directory + "/vestra");
  const std::string reason = reasonOf(project);
  if (reason.rfind("project.", 0) == 0) {
    findings.add(reason, fmt::format("nothing can be created in {}", project.obstacle),
                 reason == "project.unwritable" ? modeChange(lookAt(project.obstacle), "u+rwx") : Fixes());
  } else if (!project.root.exists()) {
    findings.add("project.missing", project.directory + " does not exist");
  } else if (isFull(project.directory)) {
    findings.add("project.full", "no space or no inodes are left in " + project.directory);
  }
  if (vestra.exists() && (vestra.mode & 0002) != 0) {
    findings.add("project.shared_writable", describe(vestra), modeChange(vestra, "o-w"));
  }
  if (project.root.exists() && vestra.kind == FileKind::missing) {
    findings.add("send.none", vestra.path + " is missing");
  }
}

}  // namespace

void checkProject(const Facts& facts, Findings& findings) {
  checkDirectory(facts.project, findings);
  const ToolFacts& tool = facts.toolFor(Oza::Vestra::KELVO);
  if (tool.isPathChanged || tool.isPathUnclear) {
    findings.add("project.shell", fmt::format("the shell reads {} as {} words than this one",
                                              reading::inQuotes(facts.project.directory, 400),
                                              tool.isPathChanged ? "other" : "perhaps other"));
  }
}

}  // namespace vestra::inspect
