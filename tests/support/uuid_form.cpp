#include "support/uuid_form.h"

#include <cstddef>

namespace vestra_test {
namespace {

// One sign for each byte: x is any hexadecimal digit, v a digit of the variant.
const std::string FORM = "xxxxxxxx-xxxx-4xxx-vxxx-xxxxxxxxxxxx";

bool fits(char byte, char sign) {
  const std::string allowed = sign == 'x' ? "0123456789abcdef" : sign == 'v' ? "89ab" : std::string(1, sign);
  return allowed.find(byte) != std::string::npos;
}

}  // namespace

bool isRandomUuid(const std::string& text) {
  bool fitsSoFar = text.size() == FORM.size();
  for (std::size_t i = 0; fitsSoFar && i < FORM.size(); ++i) {
    fitsSoFar = fits(text[i], FORM[i]);
  }
  return fitsSoFar;
}

}  // namespace vestra_test
