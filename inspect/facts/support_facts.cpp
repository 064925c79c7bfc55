#include "facts/support_facts.h"

#include <sys/stat.h>
#include <sys/xattr.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <cstring>
#include <iterator>
#include <optional>
#include <set>

#include <fmt/format.h>

#include "facts/file_snapshot.h"
#include "handler/support_library.h"
#include "loader/elf_file.h"
#include "loader/loader_listing.h"

namespace vestra::inspect {
namespace {

using Oza::support_library::FILE_NAME;

// A text of the library; shorter ones become parts of its instructions.
constexpr const char* STAND_IN_MARK = "/bin/vestra-design-tool";

/// Why the loader cannot be asked; empty when it can.
std::string whyNotAsked(const HostContext& context, const std::string& probe) {
  const std::string& host = context.host;
  if (host.empty()) {
    return context.variable("LD_LIBRARY_PATH").find('$') == std::string::npos
               ? ""
               : "LD_LIBRARY_PATH names the program's own directory: --host names the program";
  }
  const auto elf = readElfFile(host);
  if (readFileAt(host, 2).text.value_or("") == "#!") {
    return host + " is a script: --host wants the program that it runs";
  }
  if (!elf || elf->interpreter.empty()) {
    return host + (elf ? " is static: it has no loader" : " is no program for this machine");
  }
  if (isPrivileged(host)) {
    return host + " is set-user-ID, set-group-ID or has capabilities: the loader treats it differently";
  }
  if (elf->interpreter != LOADER) {
    return fmt::format("{} has a loader of its own, {}", host, elf->interpreter);
  }
  return probe.find_first_of(" :") == std::string::npos
             ? ""
             : probe + " cannot be preloaded: its path holds blanks";
}

/// The object that stands for the support library: needed by its name, or preloaded with its SONAME.
std::string pathIn(const LoaderListing& listing) {
  for (const ListedObject& object : listing.objects) {
    if (object.name == FILE_NAME) {
      return object.path;
    }
  }
  for (const ListedObject& object : listing.objects) {
    const auto elf = object.name == object.path ? readElfFile(object.path) : std::nullopt;
    if (elf && elf->soname == FILE_NAME) {
      return object.path;
    }
  }
  return "";
}

/// The entry points that neither the library nor anything that it needs defines: where dlsym looks.
/// Nothing where an object does not tell.
std::optional<std::vector<std::string>> missingIn(const std::string& library, const LoaderListing& listing) {
  std::vector<std::string> missing = {Oza::support_library::EXEC_PATH_ENTRY,
                                      Oza::support_library::REGISTRATION_ENTRY,
                                      Oza::support_library::ENVIRONMENT_ENTRY};
  std::vector<std::string> paths = {library};
  std::set<std::string> seen;
  for (std::size_t i = 0; i < paths.size() && !missing.empty(); ++i) {
    const auto elf = readElfFile(paths[i], missing);
    if (!elf || !elf->hasSections) {
      return std::nullopt;
    }
    missing.erase(std::remove_if(missing.begin(), missing.end(),
                                 [&](const std::string& symbol) { return elf->defined.count(symbol) != 0; }),
                  missing.end());
    for (const ListedObject& object : listing.objects) {
      const bool isNeeded =
          std::find(elf->needed.begin(), elf->needed.end(), object.name) != elf->needed.end();
      if (isNeeded && seen.insert(object.path).second) {
        paths.push_back(object.path);
      }
    }
  }
  return missing;
}

bool isDirectory(const std::string& path) { return lookAt(path).kind == FileKind::directory; }

void judgeFailure(const LoaderListing& listing, SupportFacts& support) {
  support.reason = listing.error;
  if (listing.signal == SIGALRM) {
    support.reason = "the loader did not come to an end within a second";
  } else if (listing.signal != 0) {
    support.state = SupportState::crashes;
    support.reason = fmt::format("loading it ends the process: {}", strsignal(listing.signal));
  } else if (!listing.error.empty()) {
    const bool isMissing = listing.object == FILE_NAME &&
                           listing.error.find("cannot open shared object file") != std::string::npos;
    support.state = isMissing ? SupportState::absent : SupportState::broken;
  } else {
    support.reason = "the loader's answer is not understood";
  }
}

void judge(const LoaderListing& listing, SupportFacts& support) {
  support.path = pathIn(listing);
  if (support.path.empty() || listing.signal != 0 || !listing.error.empty()) {
    judgeFailure(listing, support);
    return;
  }
  const auto missing = missingIn(support.path, listing);
  support.state = missing ? SupportState::found : SupportState::unknown;
  support.reason = missing ? "" : "its symbols cannot be read";
  support.missingEntryPoints = missing.value_or(std::vector<std::string>());
  support.isStandIn = readFileAt(support.path).text.value_or("").find(STAND_IN_MARK) != std::string::npos;
}

}  // namespace

bool SupportFacts::lacks(const std::string& entryPoint) const {
  return std::find(missingEntryPoints.begin(), missingEntryPoints.end(), entryPoint) !=
         missingEntryPoints.end();
}

SupportFacts lookAtSupport(const HostContext& context) {
  SupportFacts support;
  const std::string probe = libraryDirectory() + "/libvestra_support_probe.so";
  support.reason = whyNotAsked(context, probe);
  if (!support.reason.empty()) {
    return support;
  }
  const bool isForHost = !context.host.empty();
  const LoaderListing listing =
      listObjects(context, isForHost ? context.host : probe, isForHost ? probe : "", FILE_NAME);
  std::copy_if(listing.tried.begin(), listing.tried.end(), std::back_inserter(support.tried),
               [](const std::string& path) { return isDirectory(parentOf(path)); });
  judge(listing, support);
  return support;
}

bool isPrivileged(const std::string& program) {
  struct stat status {};
  return stat(program.c_str(), &status) == 0 &&
         ((status.st_mode & (S_ISUID | S_ISGID)) != 0 ||
          getxattr(program.c_str(), "security.capability", nullptr, 0) > 0);
}

const char* nameOf(SupportState state) {
  constexpr std::array<const char*, 5> names = {"found", "absent", "broken", "crashes", "unknown"};
  return names.at(static_cast<std::size_t>(state));
}

}  // namespace vestra::inspect
