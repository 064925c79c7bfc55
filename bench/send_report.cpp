// A host that adds items and sends one report, and writes what that took:
//
//     send_report COUNT PROJECT_DIRECTORY
//
// Writes the nanoseconds that `send` took, those of processor time, the bytes of memory that
// the items hold, and the bytes by which the process's peak memory exceeds that before the
// items.

#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>

#include <vestra/vestra.h>

#include "numbered_text.h"
#include "processor_time.h"

namespace {

using Oza::Vestra;

void addItems(std::size_t count) {
  vestra_bench::NumberedText key('k', 16);
  vestra_bench::NumberedText value('v', 24);
  for (std::size_t i = 0; i < count; ++i) {
    Vestra::add(key.next(), value.next(), Vestra::KELVO_USAGE);
  }
}

long residentBytes() {
  long size = 0;
  long resident = 0;
  std::ifstream("/proc/self/statm") >> size >> resident;
  return resident * sysconf(_SC_PAGESIZE);
}

// `getrusage` would include the memory of the process before `exec`.
long largestBytes() {
  std::ifstream status("/proc/self/status");
  long kilobytes = 0;
  for (std::string word; status >> word && word != "VmHWM:";) {
  }
  status >> kilobytes;
  return kilobytes * 1024;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    return EXIT_FAILURE;
  }
  const long before = residentBytes();
  addItems(std::strtoul(argv[1], nullptr, 10));
  const long withItems = residentBytes();
  const double processorBefore = vestra_bench::processorNanoseconds();
  const auto begin = std::chrono::steady_clock::now();
  Vestra::send(argv[2], Vestra::KELVO);
  const std::chrono::duration<double, std::nano> taken = std::chrono::steady_clock::now() - begin;
  const double processor = vestra_bench::processorNanoseconds() - processorBefore;
  std::printf("%.0f %.0f %ld %ld\n", taken.count(), processor, withItems - before, largestBytes() - before);
  return EXIT_SUCCESS;
}
