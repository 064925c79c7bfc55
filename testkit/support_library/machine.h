#ifndef VESTRA_TESTKIT_SUPPORT_LIBRARY_MACHINE_H
#define VESTRA_TESTKIT_SUPPORT_LIBRARY_MACHINE_H

#include <string>

namespace vestra::testkit {

/// An environment text of the machine that it runs on: six pairs that describe the
/// user's environment, then pairs of the project's facts, all separated by "#".
std::string describeMachine();

}  // namespace vestra::testkit

#endif
