#include "data/fields.h"

namespace Oza {

std::vector<std::string> fieldsOf(const std::string& text, char separator) {
  std::vector<std::string> fields;
  std::size_t begin = 0;
  for (std::size_t end = text.find(separator); end != std::string::npos; end = text.find(separator, begin)) {
    fields.push_back(text.substr(begin, end - begin));
    begin = end + 1;
  }
  fields.push_back(text.substr(begin));
  return fields;
}

}  // namespace Oza
