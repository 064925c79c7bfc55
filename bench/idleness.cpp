#include "process.h"
#include "rows.h"
#include "traced_calls.h"

namespace vestra_bench {
namespace {

struct Idleness {
  double systemCalls;
  double allocations;
  double threads;
  double files;
};

Idleness idlenessOf(const char* host) {
  const std::vector<double> numbers = numbersOf({host});
  return {static_cast<double>(countCallsBetweenMarks({host})), numbers.at(0), numbers.at(1), numbers.at(2)};
}

Spread difference(double ours, double floor) { return spreadOf({ours - floor}); }

}  // namespace

void measureIdleness(const Take& take) {
  const Idleness with = idlenessOf(IDLE_HOST);
  const Idleness without = idlenessOf(IDLE_HOST_WITHOUT_LIBRARY);
  const char* beside = "a host that is not linked to it";
  take({"never called: system calls more after loading", beside, 0,
        difference(with.systemCalls, without.systemCalls)});
  take({"never called: allocations more, loading included", beside, 0,
        difference(with.allocations, without.allocations)});
  take({"never called: threads more", beside, 0, difference(with.threads, without.threads)});
  take({"never called: open files more", beside, 0, difference(with.files, without.files)});
}

}  // namespace vestra_bench
