#ifndef VESTRA_INSPECT_FACTS_USER_FACTS_H
#define VESTRA_INSPECT_FACTS_USER_FACTS_H

#include <cstddef>
#include <string>
#include <vector>

#include "facts/file_snapshot.h"
#include "facts/host_context.h"

namespace vestra::inspect {

/// The user's settings file and the identifier in it.
struct UserFacts {
  FileSnapshot file;
  /// The identifier that reports carry; empty when there is none.
  std::string randomId;
  /// Where it stands, counted from 1; 0 without one.
  std::size_t line = 0;
  /// Whether the next report makes an identifier.
  bool makesNew = false;
  /// Whether that one can be found again by the run after it.
  bool keepsNew = false;
  /// What is in the way when neither file nor directory can be made.
  std::string obstacle;
};

UserFacts lookAtUser(const HostContext& context);

/// Who the user is, as far as a value could give it away.
struct PersonFacts {
  std::string login;
  std::string fullName;
  std::string home;
  std::string hostName;
};

PersonFacts lookAtPerson(const HostContext& context);

/// Whether a text is digits with at most a minus before them.
bool isPlainNumber(const std::string& text);

/// The lines of a text, their ends left out; a last line without an end counts.
std::vector<std::string> linesOf(const std::string& text);

}  // namespace vestra::inspect

#endif
