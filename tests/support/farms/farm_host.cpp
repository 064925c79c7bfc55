// A host of a farm:
//
//     farm_host PROJECT_DIRECTORY PRODUCT NUMBER DELAY_MILLISECONDS
//
// It adds its items, says that it is ready by a line on standard output, and waits until
// standard input ends, which releases all hosts at once. After its delay it sends its
// report, and writes a line with the answer, "true", "false" or "exception", and the
// milliseconds that it took.

#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <string>
#include <thread>

#include <vestra/vestra.h>

#include "support/report_check.h"

using Oza::Vestra;

namespace {

void say(const std::string& word) {
  const std::string line = word + "\n";
  if (write(STDOUT_FILENO, line.data(), line.size()) != static_cast<ssize_t>(line.size())) {
    std::abort();
  }
}

void waitForRelease() {
  char byte = 0;
  while (read(STDIN_FILENO, &byte, 1) > 0) {
  }
}

std::string send(const char* project, Vestra::ProductType product) {
  try {
    return Vestra::send(project, product) ? "true" : "false";
  } catch (...) {
    return "exception";
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 5) {
    return EXIT_FAILURE;
  }
  const auto product = static_cast<Vestra::ProductType>(std::atoi(argv[2]));
  const auto section = product == Vestra::TAVLO ? Vestra::TAVLO_USAGE : Vestra::KELVO_USAGE;
  for (int i = 0; i < vestra_test::MARKS_OF_A_HOST; ++i) {
    Vestra::add(vestra_test::MARK, argv[3], section);
  }
  say("ready");
  waitForRelease();
  std::this_thread::sleep_for(std::chrono::milliseconds(std::atoi(argv[4])));
  const auto begin = std::chrono::steady_clock::now();
  const std::string answer = send(argv[1], product);
  const auto time = std::chrono::steady_clock::now() - begin;
  say(answer + " " + std::to_string(std::chrono::duration_cast<std::chrono::milliseconds>(time).count()));
  return EXIT_SUCCESS;
}
