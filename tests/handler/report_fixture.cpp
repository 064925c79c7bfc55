#include "handler/report_fixture.h"

#include <sstream>

namespace vestra_test {
namespace {

bool endsWith(const std::string& text, const std::string& end) {
  return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

}  // namespace

std::string ReportFixture::itemsOf(const std::string& context) const {
  const std::string keyWord = " -key ";
  const std::string valueWord = " -value \"";
  const std::string end = "\" -context \"" + context + "\"";
  std::string items;
  std::istringstream lines(script());
  for (std::string line; std::getline(lines, line);) {
    if (endsWith(line, end)) {
      const std::size_t key = line.find(keyWord) + keyWord.size();
      const std::size_t valueAt = line.find(valueWord);
      const std::size_t value = valueAt + valueWord.size();
      items +=
          line.substr(key, valueAt - key) + "=" + line.substr(value, line.size() - end.size() - value) + "\n";
    }
  }
  return items;
}

}  // namespace vestra_test
