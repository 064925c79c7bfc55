#ifndef VESTRA_TESTS_SUPPORT_TEST_H
#define VESTRA_TESTS_SUPPORT_TEST_H

// What nearly every test of the library's classes needs, visible in their namespace.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

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
#include "support/time_limit.h"
#include "support/uuid_form.h"

namespace Oza {

using namespace std::string_literals;
using namespace testing;
using namespace vestra_test;

}  // namespace Oza

#endif
