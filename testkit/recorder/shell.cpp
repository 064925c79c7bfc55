// The command lines that hosts and the library give to the shell.

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "recorder/recording.h"

namespace vestra::testkit {
namespace {

/// The files of a design tool's start; empty names where a command line is another.
struct ToolFiles {
  explicit ToolFiles(const char* commandLine) {
    constexpr char source[] = " -mode batch -source ";
    const char* found = std::strstr(commandLine, source);
    const char* begin = found != nullptr ? found + std::strlen(source) : "";
    for (const char* product : {"kelvo", "tavlo"}) {
      char end[64];
      std::snprintf(end, sizeof end, "/vestra/%s_vestra.tcl -notrace ", product);
      if (const char* behind = std::strstr(begin, end)) {
        const auto size = static_cast<int>(behind - begin);
        std::snprintf(script, sizeof script, "%.*s/vestra/%s_vestra.tcl", size, begin, product);
        std::snprintf(rules, sizeof rules, "%.*s/vestra/usage_statistics_ext_%s.wdm", size, begin, product);
        std::snprintf(log, sizeof log, "%.*s/vestra/%s_vestra.log", size, begin, product);
      }
    }
  }

  char script[PATH_MAX] = "";
  char rules[PATH_MAX] = "";
  /// Only the lab tool has one.
  char log[PATH_MAX] = "";
};

/// While it lives, this process prints into a file of the record; into its own where there is no name.
class Redirection {
 public:
  Redirection(const char* kind, const char* number) {
    if (*kind != '\0') {
      char path[2 * PATH_MAX];
      std::snprintf(path, sizeof path, "%s/%s%s", vestra::intercept::recordDirectory(), kind, number);
      const int file = open(path, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
      for (const int stream : {STDOUT_FILENO, STDERR_FILENO}) {
        saved[stream] = fcntl(stream, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
        dup2(file, stream);
      }
      close(file);
      isActive = true;
    }
  }
  Redirection(const Redirection&) = delete;
  Redirection& operator=(const Redirection&) = delete;
  ~Redirection() {
    for (int stream = STDOUT_FILENO; isActive && stream <= STDERR_FILENO; ++stream) {
      // One that was closed has no copy.
      if (dup2(saved[stream], stream) < 0) {
        close(stream);
      }
      close(saved[stream]);
    }
  }

 private:
  bool isActive = false;
  int saved[STDERR_FILENO + 1] = {-1, -1, -1};
};

/// The bytes of a regular file; none where there is no such file.
class FileBytes {
 public:
  explicit FileBytes(const char* path) {
    const int file = open(path, O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
    struct stat status {};
    if (file >= 0 && fstat(file, &status) == 0 && S_ISREG(status.st_mode)) {
      readAll(file, static_cast<std::size_t>(status.st_size));
    }
    close(file);
  }
  FileBytes(const FileBytes&) = delete;
  FileBytes& operator=(const FileBytes&) = delete;
  ~FileBytes() { std::free(bytes); }

  operator std::string_view() const { return {bytes, length}; }

 private:
  void readAll(int file, std::size_t size) {
    bytes = static_cast<char*>(std::malloc(size));
    ssize_t read = 1;
    while (bytes != nullptr && length < size && read > 0) {
      read = ::read(file, bytes + length, size - length);
      length += read > 0 ? static_cast<std::size_t>(read) : 0;
    }
  }

  char* bytes = nullptr;
  std::size_t length = 0;
};

// The design tool takes the script's time for the hour that the report's number is made of.
void holdTimeOf(const char* script) {
  if (const auto now = heldClock()) {
    const timespec held[] = {{*now, 0}, {*now, 0}};
    utimensat(AT_FDCWD, script, held, 0);
  }
}

}  // namespace
}  // namespace vestra::testkit

int vestra::intercept::runCommand(const char* command, int (*next)(const char*)) {
  using namespace vestra::testkit;
  const NumberText number = nextNumber();
  const ToolFiles files(command);
  const char* const kind = *files.script != '\0' ? TOOL : "";
  holdTimeOf(files.script);
  std::fflush(nullptr);
  note(BEGUN_RECORD, {number, kind, command, FileBytes(files.script), FileBytes(files.rules)});
  int status = 0;
  {
    const Redirection redirection(kind, number.text);
    status = next(command);
  }
  note(ENDED_RECORD, {number, Digits(static_cast<unsigned int>(status)), FileBytes(files.log)});
  return status;
}
