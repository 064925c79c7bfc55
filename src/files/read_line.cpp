#include "files/read_line.h"

namespace Oza {

// With exceptions(badbit), getline rethrows the original exception (bad_alloc).
bool readLine(std::istream& in, std::string& line, char end) {
  try {
    in.exceptions(std::ios_base::badbit);
    return static_cast<bool>(std::getline(in, line, end));
  } catch (const std::ios_base::failure&) {
    return false;
  }
}

}  // namespace Oza
