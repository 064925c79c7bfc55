#ifndef VESTRA_INSPECT_FACTS_PROJECT_FACTS_H
#define VESTRA_INSPECT_FACTS_PROJECT_FACTS_H

#include <optional>
#include <string>
#include <vector>

#include "facts/file_snapshot.h"
#include "facts/host_context.h"
#include "identity/project_identity.h"

namespace vestra::inspect {

/// What the next report makes of the identity file.
enum class IdentityState {
  /// There is none, and one can be made.
  fresh,
  usable,
  /// It can be written and not read: the next report empties it.
  unreadable,
  /// One of its numbers is none: the next run deletes it and reports nothing.
  corrupt,
  /// Nothing is reported and nothing changes.
  unusable,
  /// It could not be looked at.
  unknown,
};

/// The fault of a corrupt identity file.
struct NumberFault {
  /// Counted from 1.
  std::size_t line = 0;
  bool isTooLarge = false;
};

/// A file that belongs to the reports of a project.
struct ReportFile {
  /// "script", "rules", "xml", "html", "log"
  std::string role;
  /// "KELVO" or "TAVLO"
  std::string product;
  FileSnapshot file;
};

struct ProjectFacts {
  /// Absolute, as the library makes it.
  std::string directory;
  FileSnapshot root;
  /// The vestra directory, with a final slash in its path.
  FileSnapshot vestra;
  FileSnapshot identityFile;
  IdentityState state = IdentityState::fresh;
  Oza::ProjectIdentity identity;
  std::optional<NumberFault> fault;
  /// What is in the way when the directory cannot be made.
  std::string obstacle;
  /// Those of both products that are there.
  std::vector<ReportFile> files;

  const ReportFile* find(const std::string& role, const std::string& product) const;
  std::string pathOf(const std::string& name) const { return vestra.path + name; }
};

ProjectFacts lookAtProject(const HostContext& context, const std::string& directory);

/// The finding that keeps runs from using the identity file; empty without one.
std::string reasonOf(const ProjectFacts& project);

/// The project that a person in this directory means: the nearest one upwards that holds an
/// identity file, else the directory itself.
std::string nearestProject(const std::string& directory);

/// The products that left traces in the project; KELVO without any.
std::vector<Product> productsOf(const ProjectFacts& project);

}  // namespace vestra::inspect

#endif
