#include "script.h"

#include <algorithm>
#include <utility>

#include "reading/tcl_text.h"

namespace vestra::design_tool {

using reading::toBytes;
using reading::toTclText;

Script::Script(std::string file, std::string_view bytes) : file_(std::move(file)), text_(toTclText(bytes)) {}

std::string Script::bytesOf(Span span) const {
  return toBytes(std::string_view(text_).substr(span.begin, span.length));
}

std::size_t Script::lineOf(std::size_t position) const {
  if (position < counted_to_) {
    counted_to_ = 0;
    counted_line_ = 1;
  }
  const auto begin = text_.begin() + static_cast<std::ptrdiff_t>(counted_to_);
  const auto end = text_.begin() + static_cast<std::ptrdiff_t>(position);
  counted_line_ += static_cast<std::size_t>(std::count(begin, end, '\n'));
  counted_to_ = position;
  return counted_line_;
}

std::size_t Script::lastLine() const {
  const std::size_t lastByte = text_.find_last_not_of('\n');
  return lastByte == std::string::npos ? 1 : lineOf(lastByte);
}

Diagnostic Script::diagnose(Span span, std::string message) const {
  const std::size_t previousEnd = span.begin == 0 ? std::string::npos : text_.rfind('\n', span.begin - 1);
  const std::size_t lineBegin = previousEnd == std::string::npos ? 0 : previousEnd + 1;
  const std::size_t lineEnd = std::min(text_.find('\n', span.begin), text_.size());
  const std::size_t marked = std::min(span.length, lineEnd - span.begin);
  return {file_,
          lineOf(span.begin),
          std::move(message),
          bytesOf({lineBegin, lineEnd - lineBegin}),
          bytesOf({lineBegin, span.begin - lineBegin}).size(),
          bytesOf({span.begin, marked}).size()};
}

}  // namespace vestra::design_tool
