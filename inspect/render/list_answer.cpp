#include <fmt/format.h>
#include <fmt/ranges.h>

#include "checks/checks.h"
#include "render/answers.h"

namespace vestra::inspect {
namespace {

void writeProject(const ListedProject& project, Page& page) {
  std::string products;
  for (const Product product : project.products) {
    products += (products.empty() ? "" : ", ") + std::string(nameOf(product));
  }
  page.row(
      project.last == 0 ? "never" : timeText(project.last).substr(0, 16),
      fmt::format("{}; {}; {}; {}{}", project.directory, products, project.next,
                  counted(project.attempts, "attempt"),
                  project.problems.empty() ? "" : fmt::format("; {}", fmt::join(project.problems, ", "))));
}

}  // namespace

std::string verdictOf(const ProjectList& list) {
  return counted(list.projects.size(), "project") +
         (list.unreadable == 0
              ? ""
              : fmt::format("; {} could not be read", list.unreadable == 1
                                                          ? "1 directory"
                                                          : fmt::format("{} directories", list.unreadable)));
}

void writeList(const ProjectList& list, Page& page) {
  page.verdict(verdictOf(list));
  page.setTextIndent(20);
  for (const ListedProject& project : list.projects) {
    writeProject(project, page);
  }
}

}  // namespace vestra::inspect
