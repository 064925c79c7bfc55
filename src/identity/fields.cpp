#include "identity/fields.h"

#include <boost/algorithm/string/classification.hpp>
#include <boost/algorithm/string/split.hpp>

namespace Oza {

std::vector<std::string> fieldsOf(const std::string& text, const char* separator) {
  std::vector<std::string> fields;
  boost::algorithm::split(fields, text, boost::algorithm::is_any_of(separator));
  return fields;
}

}  // namespace Oza
