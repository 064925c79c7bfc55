#ifndef VESTRA_TESTS_SUPPORT_SCOPED_ENV_H
#define VESTRA_TESTS_SUPPORT_SCOPED_ENV_H

#include <optional>
#include <string>

namespace vestra_test {

/// Sets or unsets an environment variable and puts the old state back at the end.
class ScopedEnv {
 public:
  /// @param value  Nothing unsets the variable.
  ScopedEnv(std::string name, const std::optional<std::string>& value);
  ScopedEnv(const ScopedEnv&) = delete;
  ScopedEnv& operator=(const ScopedEnv&) = delete;
  ~ScopedEnv();

 private:
  std::string variable;
  std::optional<std::string> before;
};

}  // namespace vestra_test

#endif
