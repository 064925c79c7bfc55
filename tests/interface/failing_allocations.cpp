#include "interface/failing_allocations.h"

#include <cstddef>
#include <cstdlib>
#include <new>

namespace vestra_test {
namespace {

constexpr long NONE = -1;

long untilFailure = NONE;
bool failed = false;
long blocks = 0;
long allocations = 0;

bool failsNow() {
  if (untilFailure == NONE) {
    return false;
  }
  failed = untilFailure == 0;
  --untilFailure;
  return failed;
}

void* allocateOrNull(std::size_t size) noexcept {
  void* block = failsNow() ? nullptr : std::malloc(size);
  if (block != nullptr) {
    ++blocks;
    ++allocations;
  }
  return block;
}

void* allocate(std::size_t size) {
  void* block = allocateOrNull(size);
  if (block == nullptr) {
    throw std::bad_alloc();
  }
  return block;
}

void release(void* block) {
  if (block != nullptr) {
    --blocks;
    std::free(block);
  }
}

}  // namespace

FailingAllocation::FailingAllocation(long position) {
  failed = false;
  untilFailure = position;
}

FailingAllocation::~FailingAllocation() { untilFailure = NONE; }

bool FailingAllocation::hasFailed() const { return failed; }

long blocksInUse() { return blocks; }

long allocationsSoFar() { return allocations; }

}  // namespace vestra_test

using vestra_test::allocate;
using vestra_test::allocateOrNull;
using vestra_test::release;

void* operator new(std::size_t size) { return allocate(size); }
void* operator new[](std::size_t size) { return allocate(size); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return allocateOrNull(size); }
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept { return allocateOrNull(size); }
void operator delete(void* block) noexcept { release(block); }
void operator delete[](void* block) noexcept { release(block); }
void operator delete(void* block, std::size_t) noexcept { release(block); }
void operator delete[](void* block, std::size_t) noexcept { release(block); }
void operator delete(void* block, const std::nothrow_t&) noexcept { release(block); }
void operator delete[](void* block, const std::nothrow_t&) noexcept { release(block); }
