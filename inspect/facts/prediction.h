#ifndef VESTRA_INSPECT_FACTS_PREDICTION_H
#define VESTRA_INSPECT_FACTS_PREDICTION_H

#include <cstdint>
#include <string>

#include "facts/project_facts.h"
#include "facts/support_facts.h"
#include "facts/tool_facts.h"
#include "facts/user_facts.h"

namespace vestra::inspect {

enum class Outcome {
  /// The tool is started on the report and `send` returns true.
  reports,
  /// The attempt is counted, nothing is handed over, `send` returns false.
  notDue,
  /// `send` returns false without counting.
  nothing,
  /// `send` throws.
  throws,
  /// `send` returns true, and the tool is not started or does not get the report.
  lost,
  /// The process ends in `send`.
  dies,
  /// It cannot be told.
  unknown,
};

/// What the next `send` for a product does, if its host gives no project identifier of
/// its own and nothing changes until then.
struct Prediction {
  Product product = Oza::Vestra::KELVO;
  Outcome outcome = Outcome::nothing;
  /// The finding that stands in the way, of a report that is not due yet too; empty without one.
  std::string reason;
  bool deletesIdentity = false;
  /// What the report says; a new identifier is not known yet.
  bool makesProjectId = false;
  std::string projectId;
  std::uint64_t iteration = 1;
  bool makesRandomId = false;
  std::string randomId;
  /// When the last report was handed over, and from when the next may be: seconds since the epoch, 0 for
  /// never.
  std::int64_t last = 0;
  std::int64_t dueFrom = 0;
  bool isDue = false;
};

Prediction predict(const HostContext& context, const UserFacts& user, const ProjectFacts& project,
                   const SupportFacts& support, const ToolFacts& tool, Product product);

/// "reports", "not_due", "nothing", "throws", "lost", "dies", "unknown"
const char* nameOf(Outcome outcome);

/// What the run leaves in the identity file when the attempt is counted.
Oza::ProjectIdentity identityAfter(const HostContext& context, const ProjectFacts& project, Product product);

}  // namespace vestra::inspect

#endif
