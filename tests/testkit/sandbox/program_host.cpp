// A host as it is shipped: what it does is its first argument, its project the second.

#include <sys/time.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <ctime>
#include <iostream>
#include <string>

#include <vestra/vestra.h>

namespace {

using Oza::Vestra;

void printTheTime() {
  timeval now{};
  gettimeofday(&now, nullptr);
  std::cout << std::time(nullptr) << ' '
            << std::chrono::system_clock::to_time_t(std::chrono::system_clock::now()) << ' ' << now.tv_sec
            << '\n';
}

void report(const char* project) {
  Vestra::add("runs", "2", Vestra::KELVO_USAGE);
  Vestra::send(project, Vestra::KELVO);
}

}  // namespace

int main(int, char** arguments) {
  const std::string what = arguments[1];
  if (what == "time") {
    printTheTime();
    return 0;
  }
  if (what == "crash") {
    std::raise(SIGABRT);
  }
  report(arguments[2]);
  if (what == "command") {
    return std::system("true");
  }
  std::cout << "the host is done" << std::endl;
}
