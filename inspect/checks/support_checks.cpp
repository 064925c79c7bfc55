#include <sys/stat.h>

#include <unistd.h>

#include <set>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "checks/checks.h"
#include "handler/support_library.h"

namespace vestra::inspect {
namespace {

using Oza::support_library::FILE_NAME;

/// Who else may change a directory or a file: none of root's and the user's own, unless by its mode.
std::string otherWriterOf(const std::string& path) {
  struct stat status {};
  if (stat(path.c_str(), &status) != 0) {
    return "";
  }
  if (status.st_uid != 0 && status.st_uid != geteuid()) {
    return fmt::format("user {}", status.st_uid);
  }
  return (status.st_mode & S_IWOTH) != 0                         ? "everybody"
         : (status.st_mode & S_IWGRP) != 0 && status.st_gid != 0 ? fmt::format("group {}", status.st_gid)
                                                                 : "";
}

void checkWritability(const SupportFacts& support, Findings& findings) {
  std::set<std::string> places;
  for (const std::string& path : support.tried) {
    places.insert(parentOf(path));
  }
  if (!support.path.empty()) {
    places.insert({parentOf(support.path), support.path});
  }
  for (const std::string& place : places) {
    const std::string writer =
        place.front() == '/' ? otherWriterOf(place) : "whoever owns the current directory";
    if (!writer.empty()) {
      findings.add("support.writable", fmt::format("{} may be written by {}", place, writer),
                   modeChange(lookAt(place), "go-w"));
    }
  }
}

std::string placesOf(const SupportFacts& support) {
  std::set<std::string> places;
  for (const std::string& path : support.tried) {
    places.insert(parentOf(path));
  }
  return places.empty() ? "" : fmt::format("; looked in {}", fmt::join(places, ", "));
}

}  // namespace

void checkSupport(const Facts& facts, Findings& findings) {
  const SupportFacts& support = facts.support;
  if (support.state == SupportState::absent) {
    findings.add("support.absent", fmt::format("the loader finds no {}{}", FILE_NAME, placesOf(support)));
  } else if (support.state == SupportState::unknown) {
    findings.add("support.unknown", support.reason);
  } else if (!support.opens()) {
    findings.add("support.broken", fmt::format("the loader says: {}", support.reason));
  } else if (!support.missingEntryPoints.empty()) {
    findings.add("support.entry",
                 fmt::format("{} lacks {}", support.path, fmt::join(support.missingEntryPoints, ", ")));
  }
  for (const char* answer : {"exec_path", "regid", "environment"}) {
    if (facts.toolFor(Oza::Vestra::KELVO).isNull(answer)) {
      findings.add("support.null", fmt::format("the stand-in returns null for {}", answer));
    }
  }
  if (support.isStandIn) {
    findings.add("support.standin", support.path);
  }
  checkWritability(support, findings);
}

}  // namespace vestra::inspect
