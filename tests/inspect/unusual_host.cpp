// A host that reports in an unusual way.
//
//     unusual_host cleared|daemon|dropped|plain PROJECT_DIRECTORY

#include <grp.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <iostream>
#include <string>

#include <vestra/vestra.h>

namespace {

int report(const char* project) {
  Oza::Vestra::add("runs", "2", Oza::Vestra::KELVO_USAGE);
  std::cout << (Oza::Vestra::send(project, Oza::Vestra::KELVO) ? "true" : "false") << std::endl;
  return 0;
}

int inChild(const char* project, bool waits) {
  const pid_t child = fork();
  if (child == 0) {
    waits ? static_cast<void>(clearenv()) : static_cast<void>(setsid());
    _exit(report(project));
  }
  return waits ? waitpid(child, nullptr, 0) == child ? 0 : 1 : 0;
}

int withoutRoot(const char* project) {
  if (setgroups(0, nullptr) != 0 || setgid(65534) != 0 || setuid(65534) != 0) {
    return 2;
  }
  return report(project);
}

}  // namespace

#ifdef OWN_SYSTEM
/// The library calls this one, as it would call a host's own that queues commands.
extern "C" __attribute__((visibility("default"))) int system(const char* command) {
  char shell[] = "sh";
  char option[] = "-c";
  char* words[] = {shell, option, const_cast<char*>(command), nullptr};
  pid_t process = 0;
  int status = -1;
  if (posix_spawn(&process, "/bin/sh", nullptr, nullptr, words, environ) == 0) {
    waitpid(process, &status, 0);
  }
  return status;
}
#endif

int main(int, char** words) {
  const std::string how = words[1];
  return how == "cleared"   ? inChild(words[2], true)
         : how == "daemon"  ? inChild(words[2], false)
         : how == "dropped" ? withoutRoot(words[2])
                            : report(words[2]);
}
