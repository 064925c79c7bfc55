#ifndef VESTRA_TESTS_SUPPORT_TEST_H
#define VESTRA_TESTS_SUPPORT_TEST_H

// What nearly every test of the library's classes needs, visible in their namespace.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "support/child_process.h"
#include "support/error_of.h"
#include "support/files.h"
#include "support/identity_text.h"
#include "support/scoped_current_directory.h"
#include "support/scoped_env.h"
#include "support/scoped_locale.h"
#include "support/special_files.h"
#include "support/temporary_directory.h"
#include "support/uuid_form.h"

namespace vestra_test {

/// Ends the process by the alarm signal when code blocks that must not. No machine is so
/// busy that anything else takes that long.
class TimeLimit {
 public:
  TimeLimit() { alarm(SECONDS); }
  TimeLimit(const TimeLimit&) = delete;
  TimeLimit& operator=(const TimeLimit&) = delete;
  ~TimeLimit() { alarm(0); }

 private:
  static constexpr unsigned int SECONDS = 300;
};

}  // namespace vestra_test

namespace Oza {

using namespace std::string_literals;
using namespace testing;
using namespace vestra_test;

}  // namespace Oza

#endif
