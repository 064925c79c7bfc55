#include "files/path_text.h"

namespace Oza {

std::string directoryOf(const std::string& path, std::size_t nameLength) {
  return path.size() < nameLength ? path : path.substr(0, path.size() - nameLength);
}

}  // namespace Oza
