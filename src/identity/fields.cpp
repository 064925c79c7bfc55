#include "identity/fields.h"

namespace Oza {

std::vector<std::string> fieldsOf(const std::string& text, char separator) {
  std::vector<std::string> fields;
  std::size_t begin = 0;
  for (std::size_t end = 0; (end = text.find(separator, begin)) != std::string::npos; begin = end + 1) {
    fields.push_back(text.substr(begin, end - begin));
  }
  fields.push_back(text.substr(begin));
  return fields;
}

}  // namespace Oza
