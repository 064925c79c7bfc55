#ifndef VESTRA_INSPECT_CHECKS_CHECKS_H
#define VESTRA_INSPECT_CHECKS_CHECKS_H

#include <string>

#include "checks/finding.h"
#include "facts/facts.h"
#include "facts/times.h"

namespace vestra::inspect {

// Each looks at the facts of one subject and adds what it finds.

void checkProject(const Facts& facts, Findings& findings);
void checkUser(const Facts& facts, Findings& findings);
void checkSupport(const Facts& facts, Findings& findings);
void checkTool(const Facts& facts, Findings& findings);
void checkReports(const Facts& facts, Findings& findings);
void checkEnvironmentAndSite(const Facts& facts, Findings& findings);

/// Looks for hosts of the user that run: reads /proc, so only the doctor does it.
void checkRunningHosts(Findings& findings);

/// All of them, but for the running hosts.
Findings findingsIn(const Facts& facts);

/// Those about the project's own files.
Findings findingsInProject(const Facts& facts);

// The fixes: commands that this user can execute, none where the command would fail.

Fixes removalOf(const std::string& path);
/// @param script  For sed, in place; a link is followed.
Fixes editOf(const FileSnapshot& file, const std::string& script);
/// @param change  For chmod; only the owner's.
Fixes modeChange(const FileSnapshot& file, const std::string& change);

/// Characters that the interpreter of the main design tool does not read as themselves.
bool holdsScript(const std::string& identifier);

/// "PATH has mode 0644 and belongs to user 1000"
std::string describe(const FileSnapshot& file);
std::string errorText(int error);
}  // namespace vestra::inspect

#endif
