// The command lines that hosts and the library give to the shell.

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

#include "recorder/command_line.h"
#include "recorder/recording.h"

namespace vestra::testkit {
namespace {

/// A number, or two, as text.
struct Text {
  char bytes[48];
  operator std::string_view() const { return bytes; }
};

template <typename... Numbers>
Text text(const char* format, Numbers... numbers) {
  Text made{};
  std::snprintf(made.bytes, sizeof made.bytes, format, numbers...);
  return made;
}

Text sizeOf(int descriptor) {
  struct stat status {};
  return text("%lld", fstat(descriptor, &status) == 0 ? static_cast<long long>(status.st_size) : 0LL);
}

/// The bytes of a regular file; none where there is no such file.
class FileBytes {
 public:
  explicit FileBytes(const Path& path) {
    const int file = open(path.text, O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
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
void holdTimeOf(const Path& script) {
  if (const auto now = heldClock()) {
    const timespec held[] = {{*now, 0}, {*now, 0}};
    utimensat(AT_FDCWD, script.text, held, 0);
  }
}

}  // namespace
}  // namespace vestra::testkit

int vestra::intercept::runCommand(const char* command, int (*next)(const char*)) {
  using namespace vestra::testkit;
  const NumberText number = nextNumber();
  const ToolCommandLine tool = toolCommandLine(command).value_or(ToolCommandLine());
  const Path script = pathFrom(tool.script);
  holdTimeOf(script);
  std::fflush(nullptr);
  note(SHELL_RECORD, {BEGUN, number, command, FileBytes(script), FileBytes(rulesFileBeside(tool.script)),
                      sizeOf(STDOUT_FILENO), sizeOf(STDERR_FILENO)});
  const int status = next(command);
  note(SHELL_RECORD, {ENDED, number, text("%d", status), FileBytes(pathFrom(tool.log)), sizeOf(STDOUT_FILENO),
                      sizeOf(STDERR_FILENO)});
  return status;
}
