#include "process.h"

#include <chrono>
#include <iterator>
#include <sstream>
#include <stdexcept>

namespace vestra_bench {
namespace {

void expectSuccess(int status, const Command& command) {
  if (status != 0) {
    throw std::runtime_error(command[0] + " failed, with status " + std::to_string(status));
  }
}

}  // namespace

std::string outputOf(const Command& command) {
  const vestra_test::Outcome outcome = vestra_test::run(command);
  expectSuccess(outcome.status, command);
  return outcome.out;
}

std::vector<double> numbersOf(const Command& command) {
  std::istringstream output(outputOf(command));
  return {std::istream_iterator<double>(output), std::istream_iterator<double>()};
}

double lifetimeOf(const Command& command) {
  const auto begin = std::chrono::steady_clock::now();
  expectSuccess(vestra_test::waitFor(vestra_test::start(command)), command);
  const std::chrono::duration<double, std::nano> taken = std::chrono::steady_clock::now() - begin;
  return taken.count();
}

}  // namespace vestra_bench
