#include "facts/project_list.h"

#include <fts.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstring>
#include <memory>

#include <boost/filesystem/operations.hpp>

#include "checks/checks.h"
#include "handler/product_profile.h"
#include "identity/project_identity.h"
#include "render/document.h"

namespace vestra::inspect {
namespace {

constexpr std::size_t DIRECTORIES_BETWEEN_WORDS = 1000;

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

bool holdsIdentity(const std::string& directory) {
  struct stat status {};
  return lstat((Oza::vestraDirectoryOf(directory) + Oza::PROJECT_IDENTITY_FILE).c_str(), &status) == 0;
}

}  // namespace

ProjectList listProjects(Facts machine, const std::vector<std::string>& directories,
                         const Progress& progress) {
  ProjectList list;
  std::vector<std::string> roots;
  std::vector<char*> paths;
  for (const std::string& directory : directories) {
    roots.push_back(boost::filesystem::canonical(directory).string());
  }
  for (std::string& root : roots) {
    paths.push_back(root.data());
  }
  paths.push_back(nullptr);
  const std::unique_ptr<FTS, int (*)(FTS*)> walk(
      fts_open(paths.data(), FTS_PHYSICAL | FTS_XDEV | FTS_NOCHDIR, nullptr), fts_close);
  std::size_t entered = 0;
  while (const FTSENT* entry = walk ? fts_read(walk.get()) : nullptr) {
    list.unreadable += entry->fts_info == FTS_DNR ? 1 : 0;
    if (entry->fts_info != FTS_D) {
      continue;
    }
    if (holdsIdentity(entry->fts_path)) {
      list.projects.push_back(describeProject(entry->fts_path, machine));
    }
    if (++entered % DIRECTORIES_BETWEEN_WORDS == 0) {
      progress(entered, list.projects.size());
    }
  }
  std::stable_sort(
      list.projects.begin(), list.projects.end(),
      [](const ListedProject& left, const ListedProject& right) { return left.last > right.last; });
  return list;
}

}  // namespace vestra::inspect
