#include "data/byte_string.h"

#include <stdexcept>

namespace Oza {

std::string byteString(const char* text) {
  if (text == nullptr) {
    throw std::logic_error("basic_string::_M_construct null not valid");
  }
  return text;
}

}  // namespace Oza
