#include "facts/prediction.h"

#include <algorithm>
#include <array>
#include <limits>

#include "handler/support_library.h"

namespace vestra::inspect {
namespace {

using Oza::SECONDS_PER_DAY;

// What a report without any item of the host's has at the least.
constexpr rlim_t SMALLEST_SCRIPT = 1024;

// As a C string, like the library: what follows a NUL is not reported.
std::string reported(const std::string& identifier) {
  return identifier.c_str();  // NOLINT(readability-redundant-string-cstr)
}

/// What ends a run before the attempt is counted.
void decideAtStart(const ProjectFacts& project, const SupportFacts& support, const ToolFacts& tool,
                   Prediction& next) {
  const auto is = [&](Outcome outcome, const char* reason) {
    next.outcome = outcome;
    next.reason = reason;
  };
  next.reason = reasonOf(project);
  if (!next.reason.empty()) {
    next.outcome = project.state == IdentityState::unknown ? Outcome::unknown : Outcome::nothing;
    next.deletesIdentity = project.state == IdentityState::corrupt && canBeRemoved(project.identityFile.path);
  } else if (support.state == SupportState::unknown) {
    is(Outcome::unknown, "support.unknown");
  } else if (!support.opens()) {
    is(support.state == SupportState::crashes ? Outcome::dies : Outcome::nothing,
       support.state == SupportState::absent ? "support.absent" : "support.broken");
  } else if (support.lacks(Oza::support_library::ENVIRONMENT_ENTRY) ||
             support.lacks(Oza::support_library::REGISTRATION_ENTRY)) {
    is(Outcome::throws, "support.entry");
  } else if (tool.isNull("environment") || tool.isNull("regid")) {
    is(Outcome::throws, "support.null");
  }
}

/// What stands in the way of a report that is due.
void decideWhenDue(const HostContext& context, const SupportFacts& support, const ToolFacts& tool,
                   Prediction& next) {
  const bool isRemoved = !context.isSwitchedOn(KEEP_VARIABLE);
  const struct {
    bool applies;
    Outcome outcome;
    const char* reason;
  } obstacles[] = {
      {support.lacks(Oza::support_library::EXEC_PATH_ENTRY), Outcome::throws, "support.entry"},
      {tool.isNull("exec_path"), Outcome::throws, "support.null"},
      {tool.isLogStuck, Outcome::throws, "tool.log"},
      {isRemoved && !tool.notRemovable.empty(), Outcome::throws, "tool.script_place"},
      {tool.lacksShell, Outcome::lost, "tool.shell"},
      {!tool.missingTool.empty(), Outcome::lost, "tool.missing"},
      {tool.isPathChanged, Outcome::lost, "project.shell"},
      {!tool.notWritable.empty(), Outcome::lost, "tool.script_place"},
      {tool.isDiskFull, Outcome::lost, "project.full"},
      {tool.sizeLimit < SMALLEST_SCRIPT, Outcome::lost, "project.limit"},
      {tool.isSizeLimited(), Outcome::unknown, "project.limit"},
      {tool.isPathUnclear, Outcome::unknown, "project.shell"},
  };
  next.outcome = Outcome::reports;
  for (const auto& obstacle : obstacles) {
    if (obstacle.applies) {
      next.outcome = obstacle.outcome;
      next.reason = obstacle.reason;
      return;
    }
  }
}

/// A record that exceeds the file-size limit is not written.
Outcome whenNotDue(const HostContext& context, const ProjectFacts& project, const ToolFacts& tool,
                   Product product) {
  const std::string record = Oza::formatProjectIdentity(identityAfter(context, project, product));
  return record.size() <= tool.sizeLimit ? Outcome::notDue : Outcome::nothing;
}

/// A time near the edge of its type stays there.
std::int64_t dueAfter(std::int64_t last) {
  constexpr std::int64_t latest = std::numeric_limits<std::int64_t>::max() - SECONDS_PER_DAY - 1;
  return last == 0 ? 0 : std::min(last, latest) + SECONDS_PER_DAY + 1;
}

}  // namespace

Prediction predict(const HostContext& context, const UserFacts& user, const ProjectFacts& project,
                   const SupportFacts& support, const ToolFacts& tool, Product product) {
  Prediction next;
  next.product = product;
  next.makesProjectId = project.state == IdentityState::fresh;
  next.projectId = reported(project.identity.projectId);
  next.iteration = project.identity.iteration;
  next.makesRandomId = user.makesNew;
  next.randomId = reported(user.randomId);
  next.last = Oza::lastSendTime(project.identity, product);
  next.dueFrom = dueAfter(next.last);
  next.isDue = Oza::isReportDue(project.identity, product, context.now);
  decideAtStart(project, support, tool, next);
  if (next.reason.empty()) {
    decideWhenDue(context, support, tool, next);
    next.outcome = next.isDue ? next.outcome : whenNotDue(context, project, tool, product);
  }
  return next;
}

const char* nameOf(Outcome outcome) {
  constexpr std::array<const char*, 7> names = {"reports", "not_due", "nothing", "throws",
                                                "lost",    "dies",    "unknown"};
  return names.at(static_cast<std::size_t>(outcome));
}

Oza::ProjectIdentity identityAfter(const HostContext& context, const ProjectFacts& project, Product product) {
  Oza::ProjectIdentity after = project.identity;
  Oza::countAttempt(after, product, context.now);
  return after;
}

}  // namespace vestra::inspect
