#include "files/path_text.h"

namespace Oza {

std::string directoryOf(const std::string& path, std::size_t nameLength) {
  // NOMUTATE(condition): a negative size wraps round, and substr takes what there is.
  return path.size() < nameLength ? path : path.substr(0, path.size() - nameLength);
}

std::string directoryOfFile(const std::string& path) { return path.substr(0, path.rfind('/') + 1); }

}  // namespace Oza
