#include "testkit/design_tool/golden.h"

#include <ctime>

#include <boost/filesystem/operations.hpp>

#include "design_tool/pages/page_style.h"
#include "support/files.h"

namespace vestra::design_tool {

std::string golden(const std::string& name) {
  std::string text = vestra_test::readFile(std::string(VESTRA_GOLDEN_DIRECTORY "/") + name);
  const std::string mark = "@PAGE_STYLE@";
  const std::size_t at = text.find(mark);
  return at == std::string::npos ? text : text.replace(at, mark.size(), PAGE_STYLE);
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

void writeScript(const std::string& path, const std::string& script) {
  vestra_test::writeFile(path, script);
  struct tm hour = {};
  hour.tm_year = 126;
  hour.tm_mon = 10;
  hour.tm_mday = 21;
  hour.tm_hour = 8;
  hour.tm_isdst = -1;
  boost::filesystem::last_write_time(path, std::mktime(&hour));
}

}  // namespace vestra::design_tool
