#ifndef VESTRA_TESTS_SUPPORT_ERROR_OF_H
#define VESTRA_TESTS_SUPPORT_ERROR_OF_H

#include <stdexcept>
#include <string>

namespace vestra_test {

/// The text of the std::logic_error that a call throws.
template <typename Call>
std::string errorOf(Call call) {
  try {
    call();
    return "nothing was thrown";
  } catch (const std::logic_error& error) {
    return error.what();
  }
}

}  // namespace vestra_test

#endif
