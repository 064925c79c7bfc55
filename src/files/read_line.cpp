#include "files/read_line.h"

namespace Oza {

// A stream that is told to throw when it goes bad throws what made it so.
bool readLine(std::istream& in, std::string& line, char end) {
  try {
    in.exceptions(std::ios_base::badbit);
    return static_cast<bool>(std::getline(in, line, end));
  } catch (const std::ios_base::failure&) {
    return false;
  }
}

}  // namespace Oza
