#include "design_tool/script/script.h"

#include <algorithm>
#include <utility>

#include "reading/tcl_text.h"

namespace vestra::design_tool {

using reading::toBytes;
using reading::toTclText;

Script::Script(std::string file, std::string_view bytes) : name(std::move(file)), tclText(toTclText(bytes)) {}

std::string Script::bytesOf(Span span) const {
  return toBytes(std::string_view(tclText).substr(span.begin, span.length));
}

std::size_t Script::lineOf(std::size_t position) const {
  if (position < countedTo) {
    countedTo = 0;
    countedLine = 1;
  }
  const auto begin = tclText.begin() + static_cast<std::ptrdiff_t>(countedTo);
  const auto end = tclText.begin() + static_cast<std::ptrdiff_t>(position);
  countedLine += static_cast<std::size_t>(std::count(begin, end, '\n'));
  countedTo = position;
  return countedLine;
}

std::size_t Script::lastLine() const {
  const std::size_t lastByte = tclText.find_last_not_of('\n');
  return lastByte == std::string::npos ? 1 : lineOf(lastByte);
}

Diagnostic Script::diagnose(Span span, std::string message) const {
  const std::size_t previousEnd = span.begin == 0 ? std::string::npos : tclText.rfind('\n', span.begin - 1);
  const std::size_t lineBegin = previousEnd == std::string::npos ? 0 : previousEnd + 1;
  const std::size_t lineEnd = std::min(tclText.find('\n', span.begin), tclText.size());
  const std::size_t marked = std::min(span.length, lineEnd - span.begin);
  return {name,
          lineOf(span.begin),
          std::move(message),
          bytesOf({lineBegin, lineEnd - lineBegin}),
          bytesOf({lineBegin, span.begin - lineBegin}).size(),
          bytesOf({span.begin, marked}).size()};
}

}  // namespace vestra::design_tool
