#ifndef VESTRA_INSPECT_FACTS_PROJECT_LIST_H
#define VESTRA_INSPECT_FACTS_PROJECT_LIST_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "facts/facts.h"

namespace vestra::inspect {

/// A project among others.
struct ListedProject {
  std::string directory;
  std::vector<Product> products;
  /// When a report was last handed over, for any product; 0 for never.
  std::int64_t last = 0;
  /// The verdict of the product that is due first.
  std::string next;
  std::uint64_t attempts = 0;
  /// The findings of level problem.
  std::vector<std::string> problems;
};

struct ProjectList {
  /// The latest report first.
  std::vector<ListedProject> projects;
  /// Directories that could not be read.
  std::size_t unreadable = 0;
};

/// Directories and projects so far.
using Progress = std::function<void(std::size_t, std::size_t)>;

/// Looks for projects in directories and all below them, on the same file system and without following links.
/// @param machine  As `lookAtMachine` gives it.
ProjectList listProjects(Facts machine, const std::vector<std::string>& directories,
                         const Progress& progress);

}  // namespace vestra::inspect

#endif
