#ifndef VESTRA_INSPECT_FACTS_TOOL_FACTS_H
#define VESTRA_INSPECT_FACTS_TOOL_FACTS_H

#include <sys/resource.h>

#include <string>
#include <vector>

#include "facts/host_context.h"
#include "facts/project_facts.h"
#include "facts/support_facts.h"

namespace vestra::inspect {

/// What stands between a report and the main design tool, for one product.
struct ToolFacts {
  /// /bin/sh may not be run.
  bool lacksShell = false;
  /// The shell makes other words of the script's path; not known where shells differ.
  bool isPathChanged = false;
  bool isPathUnclear = false;
  /// The script, where the report cannot be written to it or read by the tool.
  std::vector<std::string> notWritable;
  /// Files that cannot be removed after the run.
  std::vector<std::string> notRemovable;
  /// The lab tool's log cannot be removed before the run.
  bool isLogStuck = false;
  bool isDiskFull = false;
  /// The file-size limit of this process, which the host's is taken to be (RLIMIT_FSIZE).
  rlim_t sizeLimit = RLIM_INFINITY;
  /// Answers of the test kit's stand-in that are null: "exec_path", "regid", "environment". Other
  /// libraries are not asked.
  std::vector<std::string> nullAnswers;
  /// The tool that the stand-in names, where it is not there.
  std::string missingTool;

  bool isNull(const std::string& answer) const;
  /// Whether the limit could cut a report.
  bool isSizeLimited() const { return sizeLimit < LARGEST_RECORD; }
};

ToolFacts lookAtTool(const HostContext& context, const ProjectFacts& project, const SupportFacts& support,
                     Product product);

/// Whether a directory's file system has no space or no inodes left for this user.
bool isFull(const std::string& directory);

}  // namespace vestra::inspect

#endif
