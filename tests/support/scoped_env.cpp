#include "support/scoped_env.h"

#include <cstdlib>
#include <utility>

namespace vestra_test {
namespace {

void put(const std::string& name, const std::optional<std::string>& value) {
  if (value) {
    setenv(name.c_str(), value->c_str(), 1);
  } else {
    unsetenv(name.c_str());
  }
}

}  // namespace

ScopedEnv::ScopedEnv(std::string name, const std::optional<std::string>& value) : variable(std::move(name)) {
  if (const char* old = std::getenv(variable.c_str())) {
    before = old;
  }
  put(variable, value);
}

ScopedEnv::~ScopedEnv() { put(variable, before); }

}  // namespace vestra_test
