#ifndef VESTRA_TESTKIT_SANDBOX_PARENT_PROCESS_H
#define VESTRA_TESTKIT_SANDBOX_PARENT_PROCESS_H

namespace vestra::testkit {

// What a process must be like that owns a sandbox. Each throws std::runtime_error, with
// what to do about it, when it is not.

/// The host's calls of the library meet the test kit first.
void requireTestKitFirst();

/// A copy of this process would start afresh: Vestra was not called in it, and it has no
/// other threads, which a copy would lack.
void requireFreshProcess();

}  // namespace vestra::testkit

#endif
