#include "design_tool/diagnosis/diagnostic.h"

#include <algorithm>

#include <fmt/format.h>

#include "reading/utf8.h"
#include "reading/visible_text.h"

namespace vestra::design_tool {

using reading::firstCharacter;
using reading::forTerminal;

namespace {

constexpr std::size_t SHOWN = 120;
constexpr std::size_t SHOWN_BEFORE = 60;
constexpr std::size_t SHOWN_MARKED = 40;
const std::string INDENT = "    ";

struct Window {
  std::string before;
  std::string marked;
  std::string after;
};

std::string startOf(const std::string& text, std::size_t limit) {
  return text.size() <= limit ? forTerminal(text) : forTerminal(text.substr(0, limit)) + "...";
}

std::string endOf(const std::string& text, std::size_t limit) {
  return text.size() <= limit ? forTerminal(text) : "..." + forTerminal(text.substr(text.size() - limit));
}

Window windowOf(const Diagnostic& diagnostic) {
  const std::size_t column = std::min(diagnostic.column, diagnostic.excerpt.size());
  const std::size_t end = std::min(column + diagnostic.width, diagnostic.excerpt.size());
  return {endOf(diagnostic.excerpt.substr(0, column), SHOWN_BEFORE),
          startOf(diagnostic.excerpt.substr(column, end - column), SHOWN_MARKED),
          startOf(diagnostic.excerpt.substr(end),
                  SHOWN - std::min(column, SHOWN_BEFORE) - std::min(end - column, SHOWN_MARKED))};
}

std::size_t charactersIn(std::string_view text) {
  std::size_t count = 0;
  for (; !text.empty(); ++count) {
    text.remove_prefix(std::max<std::size_t>(1, firstCharacter(text).length));
  }
  return count;
}

std::string markerFor(const std::string& marked) {
  return "^" + std::string(std::max<std::size_t>(1, charactersIn(marked)) - 1, '~');
}

std::string placeOf(const Diagnostic& diagnostic) {
  const std::string file = forTerminal(diagnostic.file);
  return diagnostic.line == 0 ? file : fmt::format("{}:{}", file, diagnostic.line);
}

}  // namespace

std::string format(const Diagnostic& diagnostic) {
  const std::string headline = fmt::format("{}: {}\n", placeOf(diagnostic), diagnostic.message);
  if (diagnostic.excerpt.empty()) {
    return headline;
  }
  const Window window = windowOf(diagnostic);
  return fmt::format("{}{}{}{}{}\n{}{}{}\n", headline, INDENT, window.before, window.marked, window.after,
                     INDENT, std::string(charactersIn(window.before), ' '), markerFor(window.marked));
}

}  // namespace vestra::design_tool
