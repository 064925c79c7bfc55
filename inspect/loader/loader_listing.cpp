#include "loader/loader_listing.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <stdexcept>
#include <string_view>

#include <boost/algorithm/string/predicate.hpp>
#include <boost/filesystem/operations.hpp>

#include "facts/user_facts.h"

namespace vestra::inspect {
namespace {

constexpr unsigned int SECONDS_AT_MOST = 1;
constexpr std::size_t OUTPUT_AT_MOST = 4U << 20U;
constexpr std::string_view ERROR = ": error while loading shared libraries: ";

/// The variables by which the loader searches. Others make it run code (LD_AUDIT, LD_WARN) or write files
/// (LD_DEBUG_OUTPUT, LD_PROFILE).
std::vector<std::string> loaderEnvironment(const HostContext& context, const std::string& preloaded) {
  std::string preload = context.variable("LD_PRELOAD");
  if (!preloaded.empty()) {
    preload += (preload.empty() ? "" : ":") + preloaded;
  }
  std::vector<std::string> entries = {"LD_DEBUG=libs"};
  for (const char* name : {"LD_LIBRARY_PATH", "GLIBC_TUNABLES"}) {
    if (context.isSwitchedOn(name)) {
      entries.push_back(name + ("=" + context.variable(name)));
    }
  }
  if (!preload.empty()) {
    entries.push_back("LD_PRELOAD=" + preload);
  }
  return entries;
}

// A timer outlives exec: a loader that opens a named pipe ends by it.
[[noreturn]] void becomeLoader(const HostContext& context, const std::vector<std::string>& entries,
                               const std::string& program, int output) {
  std::vector<char*> environment;
  for (const std::string& entry : entries) {
    environment.push_back(const_cast<char*>(entry.c_str()));
  }
  environment.push_back(nullptr);
  const rlimit none{};
  setrlimit(RLIMIT_CORE, &none);
  setrlimit(RLIMIT_FSIZE, &none);
  std::signal(SIGALRM, SIG_DFL);
  sigset_t alarms;
  sigemptyset(&alarms);
  sigaddset(&alarms, SIGALRM);
  sigprocmask(SIG_UNBLOCK, &alarms, nullptr);
  alarm(SECONDS_AT_MOST);
  const int nothing = open("/dev/null", O_RDONLY);
  if (chdir(context.currentDirectory.c_str()) == 0 && dup2(nothing, 0) == 0 && dup2(output, 1) == 1 &&
      dup2(output, 2) == 2) {
    std::array<const char*, 4> words = {LOADER, "--list", program.c_str(), nullptr};
    execve(LOADER, const_cast<char* const*>(words.data()), environment.data());
  }
  _exit(127);
}

std::string readToEnd(int descriptor) {
  std::string text;
  std::array<char, 65536> piece{};
  ssize_t length = 0;
  while (text.size() < OUTPUT_AT_MOST && (length = read(descriptor, piece.data(), piece.size())) > 0) {
    text.append(piece.data(), static_cast<std::size_t>(length));
  }
  return text;
}

/// "NAME => PATH (0x...)" or "PATH (0x...)"
void readObject(const std::string& line, LoaderListing& listing) {
  const std::size_t end = line.rfind(" (0x");
  const std::string object = line.substr(1, end - 1);
  const std::size_t arrow = object.find(" => ");
  if (end != std::string::npos) {
    listing.objects.push_back(
        {object.substr(0, arrow), arrow == std::string::npos ? object : object.substr(arrow + 4)});
  }
}

/// "SUBJECT: error while loading shared libraries: OBJECT: REASON", or another complaint such as
/// "SUBJECT: LIBRARY: version `V' not found (required by OBJECT)".
void readMessage(const std::string& line, LoaderListing& listing) {
  const std::size_t error = line.find(ERROR);
  if (error != std::string::npos) {
    listing.error = line.substr(error + ERROR.size());
    listing.object = listing.error.substr(0, listing.error.find(": "));
  } else if (line.find(": version `") != std::string::npos && listing.error.empty()) {
    listing.error = line.substr(std::min(line.find(": ") + 2, line.size()));
  }
}

/// What LD_DEBUG=libs tells of one library's search begins with its name and ends with a blank line.
class SearchReader {
 public:
  SearchReader(const std::string& library, LoaderListing& target)
      : begin("find library=" + library + " ["), listing(target) {}

  void read(const std::string& text) {
    const std::size_t file = text.find("trying file=");
    if (boost::algorithm::starts_with(text, begin)) {
      isOpen = true;
    } else if (boost::algorithm::starts_with(text, "find library=") || text.empty()) {
      isOpen = false;
    } else if (isOpen && file != std::string::npos) {
      listing.tried.push_back(text.substr(file + 12));
    }
  }

 private:
  std::string begin;
  LoaderListing& listing;
  bool isOpen = false;
};

/// The text behind "     PID:\t"; nothing for a line that LD_DEBUG did not write.
std::optional<std::string> debugText(const std::string& line) {
  const std::size_t number = line.find_first_not_of(' ');
  const std::size_t colon = line.find_first_not_of("0123456789", number);
  const bool isDebug = number != std::string::npos && colon != number && colon != std::string::npos &&
                       line.compare(colon, 2, ":\t") == 0;
  return isDebug ? std::optional(line.substr(colon + 2)) : std::nullopt;
}

LoaderListing readListing(const std::string& text, const std::string& library) {
  LoaderListing listing;
  SearchReader search(library, listing);
  for (const std::string& line : linesOf(text)) {
    if (const auto debug = debugText(line)) {
      search.read(*debug);
    } else if (line.rfind('\t', 0) == 0) {
      readObject(line, listing);
    } else {
      readMessage(line, listing);
    }
  }
  return listing;
}

}  // namespace

std::string libraryDirectory() {
  const boost::filesystem::path self = boost::filesystem::read_symlink("/proc/self/exe");
  return boost::filesystem::weakly_canonical(self.parent_path() / LIBRARIES_FROM_HERE).string();
}

LoaderListing listObjects(const HostContext& context, const std::string& program,
                          const std::string& preloaded, const std::string& library) {
  std::array<int, 2> ends{};
  if (pipe2(ends.data(), O_CLOEXEC) != 0) {
    throw std::runtime_error("no pipe can be made to the loader");
  }
  const std::vector<std::string> entries = loaderEnvironment(context, preloaded);
  const pid_t loader = fork();
  if (loader == 0) {
    becomeLoader(context, entries, program, ends[1]);
  }
  close(ends[1]);
  const std::string text = readToEnd(ends[0]);
  close(ends[0]);
  int status = 0;
  if (loader < 0 || waitpid(loader, &status, 0) != loader) {
    throw std::runtime_error("the loader cannot be started");
  }
  LoaderListing listing = readListing(text, library);
  listing.signal = WIFSIGNALED(status) ? WTERMSIG(status) : 0;
  return listing;
}

}  // namespace vestra::inspect
