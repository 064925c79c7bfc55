#ifndef VESTRA_TESTS_INTERFACE_FAILING_ALLOCATIONS_H
#define VESTRA_TESTS_INTERFACE_FAILING_ALLOCATIONS_H

namespace vestra_test {

/// Makes one allocation fail: the n-th by `operator new` from here on, counted
/// from 0. The program that links this has operators of its own.
class FailingAllocation {
 public:
  explicit FailingAllocation(long position);
  FailingAllocation(const FailingAllocation&) = delete;
  FailingAllocation& operator=(const FailingAllocation&) = delete;
  ~FailingAllocation();

  /// Whether the n-th allocation was asked for and failed.
  bool hasFailed() const;
};

/// How many blocks of `operator new` are in use.
long blocksInUse();

/// How many `operator new` has given since the program's start.
long allocationsSoFar();

}  // namespace vestra_test

#endif
