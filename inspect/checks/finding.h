#ifndef VESTRA_INSPECT_CHECKS_FINDING_H
#define VESTRA_INSPECT_CHECKS_FINDING_H

#include <string>
#include <vector>

namespace vestra::inspect {

enum class Level { note, warning, problem };

/// "problem", "warning", "note"
const char* nameOf(Level level);

/// One check: what its finding is called and what follows from it. Identifiers are
/// stable and never used for something else.
struct Check {
  const char* id;
  Level level;
  const char* means;
};

/// Every check, in the order in which findings are told.
const std::vector<Check>& allChecks();

/// Shell commands after which the finding is gone; none where there is nothing to do, or somebody else has
/// to.
using Fixes = std::vector<std::string>;

/// What a check found.
struct Finding {
  const Check* check;
  /// What was seen, with file and line.
  std::string says;
  Fixes fixes;
};

/// What the checks found.
class Findings {
 public:
  /// @param id  One of `allChecks`; throws std::out_of_range otherwise.
  void add(const std::string& id, std::string says, Fixes fixes = {});

  /// In the order of `allChecks`.
  std::vector<Finding> sorted() const;
  /// How many have this level.
  std::size_t count(Level level) const;

 private:
  std::vector<Finding> findings;
};

/// A path or word for a shell's command line.
std::string shellWord(const std::string& text);

}  // namespace vestra::inspect

#endif
