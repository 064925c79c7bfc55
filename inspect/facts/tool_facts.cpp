#include "facts/tool_facts.h"

#include <sys/statvfs.h>
#include <unistd.h>
#include <wordexp.h>

#include <algorithm>

#include <boost/algorithm/string/classification.hpp>
#include <boost/algorithm/string/split.hpp>

#include "facts/user_facts.h"
#include "handler/product_profile.h"

namespace vestra::inspect {
namespace {

std::vector<std::string> partsOf(const std::string& text, const char* separator) {
  std::vector<std::string> parts;
  boost::algorithm::split(parts, text, boost::algorithm::is_any_of(separator));
  return parts;
}

/// Braces are letters to some shells and a list to others; wordexp refuses them.
bool holdsBraceList(const std::string& text) {
  const std::size_t brace = text.find('{');
  return brace != std::string::npos && text.find_first_of(",.", brace) != std::string::npos;
}

void askShell(std::string path, ToolFacts& tool) {
  tool.lacksShell = access("/bin/sh", X_OK) != 0;
  tool.isPathUnclear = holdsBraceList(path);
  path.erase(std::remove_if(path.begin(), path.end(), boost::algorithm::is_any_of("{}")), path.end());
  wordexp_t words{};
  const int error = wordexp(path.c_str(), &words, WRDE_NOCMD);
  tool.isPathChanged = error != 0 || words.we_wordc != 1 || words.we_wordv[0] != path;
  if (error == 0) {
    wordfree(&words);
  }
}

/// Whether the tool finds the report under a name. Another owner's file is replaced; the user's own keeps its
/// permissions, and is left where they forbid writing.
bool getsReport(const FileSnapshot& file) {
  std::string obstacle;
  if (file.kind == FileKind::missing) {
    return file.link ? canCreateTarget(file) : canHoldFiles(parentOf(file.path), obstacle);
  }
  const bool isReplaced = file.owner != geteuid() && !file.link && file.kind != FileKind::directory &&
                          file.exists() && canBeRemoved(file.path);
  return isReplaced || (file.isRegular() && file.writable && file.readable);
}

void lookAtFiles(const ProjectFacts& project, Product product, ToolFacts& tool) {
  const std::string script = project.pathOf(Oza::profileOf(product).script);
  if (!getsReport(lookAt(script))) {
    tool.notWritable.push_back(script);
  }
  for (const std::string& path : {script, project.pathOf(Oza::profileOf(product).rules)}) {
    const FileSnapshot file = lookAt(path);
    if ((file.exists() || file.link) && !canBeRemoved(path)) {
      tool.notRemovable.push_back(path);
    }
  }
  tool.isLogStuck = product == Oza::Vestra::TAVLO && !canBeRemoved(project.pathOf(Oza::LOG_FILE));
}

bool isProgram(const std::string& path) {
  return lookAt(path).isRegular() && access(path.c_str(), X_OK) == 0;
}

/// Whether the shell finds the program that a plain command begins with.
bool isFound(const std::string& command, const HostContext& context) {
  const std::string word = command.substr(0, command.find_first_of(" \t"));
  if (word.find_first_of("$`'\"\\;&|(){}=") != std::string::npos) {
    return true;
  }
  if (word.find('/') != std::string::npos) {
    return isProgram(word);
  }
  const std::vector<std::string> directories = partsOf(context.variable("PATH"), ":");
  const bool isBuiltIn = word == "true" || word == "false" || word == "echo" || word == ":" || word == "exit";
  return isBuiltIn || std::any_of(directories.begin(), directories.end(), [&](const std::string& directory) {
           return isProgram((directory.empty() ? "." : directory) + "/" + word);
         });
}

void askStandIn(const HostContext& context, ToolFacts& tool) {
  tool.nullAnswers = partsOf(context.variable("VESTRA_TESTKIT_NULL"), ",");
  const std::string command = context.variable("VESTRA_TESTKIT_EXEC_PATH");
  if (context.environment.count("VESTRA_TESTKIT_EXEC_PATH") != 0 && !isFound(command, context)) {
    tool.missingTool = command;
  }
}

}  // namespace

bool ToolFacts::isNull(const std::string& answer) const {
  return std::find(nullAnswers.begin(), nullAnswers.end(), answer) != nullAnswers.end();
}

ToolFacts lookAtTool(const HostContext& context, const ProjectFacts& project, const SupportFacts& support,
                     Product product) {
  ToolFacts tool;
  askShell(project.pathOf(Oza::profileOf(product).script), tool);
  lookAtFiles(project, product, tool);
  rlimit limit{};
  tool.sizeLimit = getrlimit(RLIMIT_FSIZE, &limit) == 0 ? limit.rlim_cur : RLIM_INFINITY;
  tool.isDiskFull = isFull(project.vestra.exists() ? project.vestra.path : project.directory);
  if (support.isStandIn) {
    askStandIn(context, tool);
  }
  return tool;
}

bool isFull(const std::string& directory) {
  struct statvfs system {};
  if (statvfs(directory.c_str(), &system) != 0) {
    return false;
  }
  const fsblkcnt_t free = geteuid() == 0 ? system.f_bfree : system.f_bavail;
  return free == 0 || (system.f_files != 0 && system.f_favail == 0);
}

}  // namespace vestra::inspect
