#include <fmt/format.h>
#include <fmt/ranges.h>

#include "checks/checks.h"
#include "handler/support_library.h"

namespace vestra::inspect {
namespace {

const std::vector<std::string> PATH_ADVICE = {"export LD_LIBRARY_PATH=DIRECTORY_OF_THE_LIBRARY"};

/// All places, one after the other: the reader has to see that his own is missing.
std::string placesOf(const SearchResult& search) {
  std::string text;
  for (const Candidate& candidate : search.tried) {
    text += fmt::format("{}{} ({}: {})", text.empty() ? "" : ", ", candidate.path, candidate.rule,
                        candidate.reason);
  }
  return text;
}

void checkAbsence(const SupportFacts& support, Findings& findings) {
  const SearchResult& search = support.search;
  if (search.tried.empty() || search.tried.back().state != ElfState::broken) {
    findings.add(
        "support.absent",
        fmt::format("{} is at none of the places {}", Oza::support_library::FILE_NAME, placesOf(search)),
        PATH_ADVICE);
    return;
  }
  const Candidate& broken = search.tried.back();
  std::string says =
      fmt::format("{} ({}): \"{}\". The search ends there", broken.path, broken.rule, broken.reason);
  for (const Candidate& behind : search.notReached) {
    says += fmt::format("; {} ({}) is not reached", behind.path, behind.rule);
  }
  findings.add("support.hidden", says, {"rm -r " + shellWord(broken.path)});
}

void checkChosen(const SupportFacts& support, Findings& findings) {
  const std::string& path = support.search.chosen;
  if (!support.missingNeeds.empty()) {
    findings.add("support.needs",
                 fmt::format("{} needs {}: not found", path, fmt::join(support.missingNeeds, ", ")),
                 {fmt::format("ldd {}", shellWord(path))});
  }
  if (!support.missingEntryPoints.empty()) {
    findings.add("support.entry",
                 fmt::format("{} lacks {}", path, fmt::join(support.missingEntryPoints, ", ")),
                 {fmt::format("nm -D {}", shellWord(path))});
  }
  if (support.mayNotRun) {
    findings.add("support.noexec", path + " lies on a file system that is mounted noexec");
  }
  if (support.isStandIn) {
    findings.add("support.standin", path, {"unset LD_LIBRARY_PATH"});
  }
}

}  // namespace

void checkSupport(const Facts& facts, Findings& findings) {
  const SupportFacts& support = facts.support;
  if (support.search.chosen.empty()) {
    checkAbsence(support, findings);
  } else {
    checkChosen(support, findings);
  }
  if (support.hostIsPrivileged) {
    findings.add("support.secure", facts.view.host + " runs with other rights than its user's");
  }
  if (!support.inRunpath.empty()) {
    findings.add("support.runpath",
                 fmt::format("{} has RUNPATH {}", facts.view.host, *support.host->runpath));
  }
  for (const std::string& place : support.writableByOthers) {
    findings.add("support.writable",
                 place == "."
                     ? "an empty element or \".\" in LD_LIBRARY_PATH stands for the current directory"
                     : fmt::format("others may write {}", place),
                 place == "." ? PATH_ADVICE : std::vector<std::string>{"chmod o-w " + shellWord(place)});
  }
}

}  // namespace vestra::inspect
