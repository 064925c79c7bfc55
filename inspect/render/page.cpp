#include "render/page.h"

#include <string_view>
#include <vector>

#include <fmt/format.h>

#include "reading/visible_text.h"

namespace vestra::inspect {
namespace {

constexpr std::size_t WIDTH = 80;
constexpr std::size_t LABEL_INDENT = 2;

bool beginsCharacter(char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U; }

/// The bytes of the first characters.
std::size_t lengthOf(std::string_view text, std::size_t characters) {
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (beginsCharacter(text[i]) && characters-- == 0) {
      return i;
    }
  }
  return text.size();
}

/// The text's lines of at most `width` characters, broken at blanks or else behind slashes where there are
/// any.
std::vector<std::string_view> folded(std::string_view text, std::size_t width) {
  std::vector<std::string_view> lines;
  while (true) {
    const std::size_t length = lengthOf(text, width);
    if (length == text.size()) {
      lines.push_back(text);
      return lines;
    }
    const std::size_t blank = text.rfind(' ', length);
    const std::size_t slash = text.rfind('/', length - 1);
    const bool hasBlank = blank != std::string_view::npos && blank != 0;
    const bool hasSlash = slash != std::string_view::npos && slash != 0;
    const std::size_t end = hasBlank ? blank : hasSlash ? slash + 1 : length;
    lines.push_back(text.substr(0, end));
    text.remove_prefix(end + (hasBlank ? 1 : 0));
  }
}

}  // namespace

void Page::heading(const std::string& text) {
  const std::string shown = reading::forTerminal(text);
  for (const std::string_view line : folded(shown, WIDTH)) {
    out << marked("\033[1m", std::string(line)) << '\n';
  }
}

void Page::row(const std::string& label, const std::string& text) {
  std::string left = std::string(LABEL_INDENT, ' ') + reading::forTerminal(label);
  if (text.empty() || lengthOf(left, textIndent - 1) != left.size()) {
    paragraph(LABEL_INDENT, label);
    left.clear();
  }
  if (text.empty()) {
    return;
  }
  left = fmt::format("{:<{}}", left, textIndent);
  const std::string shown = reading::forTerminal(text);
  for (const std::string_view line : folded(shown, WIDTH - textIndent)) {
    out << left << line << '\n';
    left.assign(textIndent, ' ');
  }
}

void Page::paragraph(std::size_t indent, const std::string& text) {
  const std::string shown = reading::forTerminal(text);
  for (const std::string_view line : folded(shown, WIDTH - indent)) {
    out << std::string(indent, ' ') << line << '\n';
  }
}

void Page::command(const std::string& text) { out << "    " << reading::forTerminal(text) << '\n'; }

void Page::level(const std::string& level, const std::string& id) {
  const char* colour = level == "problem" ? "\033[31m" : level == "warning" ? "\033[33m" : "";
  out << marked(colour, fmt::format("{:<7}", level)) << "  " << id << '\n';
}

std::string Page::marked(const char* code, const std::string& text) const {
  return colours && *code != '\0' ? code + text + "\033[0m" : text;
}

}  // namespace vestra::inspect
