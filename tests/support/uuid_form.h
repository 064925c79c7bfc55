#ifndef VESTRA_TESTS_SUPPORT_UUID_FORM_H
#define VESTRA_TESTS_SUPPORT_UUID_FORM_H

#include <string>

namespace vestra_test {

/// Whether a text is a random (version 4) UUID in lower-case canonical form.
bool isRandomUuid(const std::string& text);

}  // namespace vestra_test

#endif
