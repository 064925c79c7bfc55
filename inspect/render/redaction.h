#ifndef VESTRA_INSPECT_RENDER_REDACTION_H
#define VESTRA_INSPECT_RENDER_REDACTION_H

#include <string>
#include <utility>
#include <vector>

#include "facts/facts.h"

namespace vestra::inspect {

/// Takes what identifies somebody out of texts: each of it becomes a mark, the same one
/// wherever it stands.
class Redaction {
 public:
  /// Leaves every text as it is.
  Redaction() = default;
  /// Marks the home, the login, the full and the host name.
  explicit Redaction(const PersonFacts& person);
  /// Marks the identifiers as well.
  explicit Redaction(const Facts& facts);

  std::string operator()(std::string text) const;
  bool isOn() const { return on; }

 private:
  /// @param wordsOnly  Leaves it where it is a part of a longer word.
  void mark(const std::string& text, const std::string& with, bool wordsOnly);

  struct Mark {
    std::string text;
    std::string with;
    bool wordsOnly;
  };
  std::vector<Mark> marks;
  bool on = false;
};

}  // namespace vestra::inspect

#endif
