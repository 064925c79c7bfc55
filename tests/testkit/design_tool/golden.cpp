#include "testkit/design_tool/golden.h"

#include "support/files.h"

namespace vestra::design_tool {

std::string golden(const std::string& name) {
  return vestra_test::readFile(std::string(VESTRA_GOLDEN_DIRECTORY "/") + name);
}

std::string goldenIn(const std::string& directory, const std::string& name) {
  const std::string original = "/home/u/demo";
  std::string text = golden(name);
  for (std::size_t at = text.find(original); at != std::string::npos;
       at = text.find(original, at + directory.size())) {
    text.replace(at, original.size(), directory);
  }
  return text;
}

}  // namespace vestra::design_tool
