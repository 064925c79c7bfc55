#ifndef VESTRA_TESTKIT_SANDBOX_RESULTS_REASONS_H
#define VESTRA_TESTKIT_SANDBOX_RESULTS_REASONS_H

#include <string>

namespace vestra::testkit {

/// What `system` returned, in words: "status 1", "signal 9".
std::string statusText(int status);

}  // namespace vestra::testkit

#endif
