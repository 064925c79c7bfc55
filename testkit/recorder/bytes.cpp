#include "recorder/bytes.h"

#include <sys/stat.h>

#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>

namespace vestra::testkit {

std::optional<std::string> bytesOf(const std::string& path) {
  struct stat status {};
  if (stat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) {
    return std::nullopt;
  }
  std::ifstream in(path, std::ios::binary);
  if (!in) {
    return std::nullopt;
  }
  return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

void writeBytes(const std::string& path, const std::string& bytes) {
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  if (!(out << bytes).flush()) {
    throw std::runtime_error("the sandbox cannot write " + path);
  }
}

std::vector<std::string> linesOf(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) {
    lines.push_back(line);
  }
  return lines;
}

}  // namespace vestra::testkit
