#include "support/uuid_form.h"

#include <regex>

namespace vestra_test {

bool isRandomUuid(const std::string& text) {
  static const std::regex form("[0-9a-f]{8}-[0-9a-f]{4}-4[0-9a-f]{3}-[89ab][0-9a-f]{3}-[0-9a-f]{12}");
  return std::regex_match(text, form);
}

}  // namespace vestra_test
