#include "facts/prediction.h"

#include <algorithm>
#include <array>
#include <limits>

#include "handler/product_profile.h"

namespace vestra::inspect {
namespace {

using Oza::SECONDS_PER_DAY;

// As a C string, like the library: what follows a NUL is not reported.
std::string reported(const std::string& identifier) {
  return identifier.c_str();  // NOLINT(readability-redundant-string-cstr)
}

std::string obstacleOf(const ProjectFacts& project, const SupportFacts& support) {
  switch (project.state) {
    case IdentityState::damaged:
      return project.fault->isTooLarge ? "identity.range" : "identity.number";
    case IdentityState::unusable:
      return project.identityFile.exists() || project.identityFile.error != 0 ? "identity.unusable"
                                                                              : "project.unwritable";
    default:
      return support.opens() ? "" : "support.absent";
  }
}

/// Where the library fails with the report in its hands: the attempt is counted then.
std::string laterFault(const ProjectFacts& project, Product product) {
  if (product == Oza::Vestra::TAVLO && !canBeRemoved(project.pathOf(Oza::LOG_FILE))) {
    return "tool.log";
  }
  return "";
}

/// A time near the edge of its type stays there.
std::int64_t dueAfter(std::int64_t last) {
  constexpr std::int64_t latest = std::numeric_limits<std::int64_t>::max() - SECONDS_PER_DAY - 1;
  return last == 0 ? 0 : std::min(last, latest) + SECONDS_PER_DAY + 1;
}

void decide(const ProjectFacts& project, const SupportFacts& support, Prediction& next) {
  next.reason = obstacleOf(project, support);
  next.deletesIdentity = project.state == IdentityState::damaged && canBeRemoved(project.identityFile.path);
  if (!next.reason.empty()) {
    return;
  }
  if (!support.missingEntryPoints.empty()) {
    next.reason = "support.entry";
    next.outcome = Outcome::throws;
  } else if (!next.isDue) {
    next.outcome = Outcome::notDue;
  } else {
    next.reason = laterFault(project, next.product);
    next.outcome = next.reason.empty() ? Outcome::reports : Outcome::throws;
  }
}

}  // namespace

Prediction predict(const View& view, const UserFacts& user, const ProjectFacts& project,
                   const SupportFacts& support, Product product) {
  Prediction next;
  next.product = product;
  next.makesProjectId = project.state == IdentityState::fresh;
  next.projectId = reported(project.identity.projectId);
  next.iteration = project.identity.iteration;
  next.makesRandomId = user.makesNew;
  next.randomId = reported(user.randomId);
  next.last = Oza::lastSendTime(project.identity, product);
  next.dueFrom = dueAfter(next.last);
  next.isDue = Oza::isReportDue(project.identity, product, view.now);
  decide(project, support, next);
  return next;
}

const char* nameOf(Outcome outcome) {
  constexpr std::array<const char*, 4> names = {"reports", "not_due", "nothing", "throws"};
  return names.at(static_cast<std::size_t>(outcome));
}

Oza::ProjectIdentity identityAfter(const View& view, const ProjectFacts& project, Product product) {
  Oza::ProjectIdentity after = project.identity;
  Oza::countAttempt(after, product, view.now);
  return after;
}

}  // namespace vestra::inspect
