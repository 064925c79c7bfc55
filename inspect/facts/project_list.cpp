#include "facts/project_list.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <memory>

#include <boost/filesystem/operations.hpp>

#include "checks/checks.h"
#include "identity/project_identity.h"
#include "render/answers.h"

namespace vestra::inspect {
namespace {

constexpr std::size_t DIRECTORIES_BETWEEN_WORDS = 1000;

int openDirectory(const std::string& path) {
  constexpr int flags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;
  const int descriptor = open(path.c_str(), flags | O_NOATIME);
  return descriptor < 0 && errno == EPERM ? open(path.c_str(), flags) : descriptor;
}

bool isDirectory(int parent, const dirent& entry) {
  struct stat status {};
  return entry.d_type == DT_DIR ||
         (entry.d_type == DT_UNKNOWN && fstatat(parent, entry.d_name, &status, AT_SYMLINK_NOFOLLOW) == 0 &&
          S_ISDIR(status.st_mode));
}

ListedProject describeProject(const std::string& directory, Facts& facts) {
  lookInto(directory, {}, facts);
  ListedProject project;
  project.directory = directory;
  project.products = facts.products;
  const Oza::ProjectIdentity& identity = facts.project.identity;
  project.last = std::max(identity.lastSendTimeDefault, identity.lastSendTimeType1);
  project.attempts = identity.iteration == 0 ? 0 : identity.iteration - 1;
  const Product first =
      *std::min_element(facts.products.begin(), facts.products.end(), [&](Product left, Product right) {
        return facts.predictionFor(left).dueFrom < facts.predictionFor(right).dueFrom;
      });
  project.next = verdictOf(facts, facts.predictionFor(first));
  for (const Finding& finding : findingsInProject(facts).sorted()) {
    if (finding.check->level == Level::problem) {
      project.problems.emplace_back(finding.check->id);
    }
  }
  return project;
}

/// One walk through a directory and all below it.
class Walk {
 public:
  Walk(Facts& sharedFacts, ProjectList& found, const Progress& said)
      : facts(sharedFacts), list(found), progress(said) {}

  void through(const std::string& root) {
    struct stat status {};
    if (stat(root.c_str(), &status) == 0) {
      fileSystem = status.st_dev;
    }
    std::vector<std::string> waiting = {root};
    while (!waiting.empty()) {
      const std::string directory = std::move(waiting.back());
      waiting.pop_back();
      enter(directory, waiting);
    }
  }

 private:
  void enter(const std::string& directory, std::vector<std::string>& waiting) {
    const int descriptor = openDirectory(directory);
    struct stat status {};
    if (descriptor < 0 || fstat(descriptor, &status) != 0) {
      ++list.unreadable;
      return;
    }
    const std::unique_ptr<DIR, int (*)(DIR*)> stream(fdopendir(descriptor), closedir);
    if (status.st_dev != fileSystem || !stream) {
      return;
    }
    if (++entered % DIRECTORIES_BETWEEN_WORDS == 0) {
      progress(entered, list.projects.size());
    }
    const std::string identity = std::string("vestra/") + Oza::PROJECT_IDENTITY_FILE;
    if (fstatat(descriptor, identity.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0) {
      list.projects.push_back(describeProject(directory, facts));
    }
    while (const dirent* entry = readdir(stream.get())) {
      const bool isSelf = std::strcmp(entry->d_name, ".") == 0 || std::strcmp(entry->d_name, "..") == 0;
      if (!isSelf && isDirectory(descriptor, *entry)) {
        waiting.push_back(directory + (directory.back() == '/' ? "" : "/") + entry->d_name);
      }
    }
  }

  Facts& facts;
  ProjectList& list;
  const Progress& progress;
  dev_t fileSystem = 0;
  std::size_t entered = 0;
};

}  // namespace

ProjectList listProjects(Facts machine, const std::vector<std::string>& directories,
                         const Progress& progress) {
  ProjectList list;
  for (const std::string& directory : directories) {
    Walk(machine, list, progress).through(boost::filesystem::canonical(directory).string());
  }
  std::stable_sort(
      list.projects.begin(), list.projects.end(),
      [](const ListedProject& left, const ListedProject& right) { return left.last > right.last; });
  return list;
}

}  // namespace vestra::inspect
