#include "render/page.h"

#include <string_view>

#include <fmt/format.h>

#include "reading/utf8.h"
#include "reading/visible_text.h"

namespace vestra::inspect {
namespace {

constexpr std::size_t WIDTH = 80;
constexpr std::size_t LABEL_INDENT = 2;
constexpr std::size_t COMMAND_INDENT = 4;

struct Range {
  char32_t first;
  char32_t last;
};

bool isIn(char32_t codePoint, std::initializer_list<Range> ranges) {
  for (const Range& range : ranges) {
    if (codePoint >= range.first && codePoint <= range.last) {
      return true;
    }
  }
  return false;
}

/// As wide as two letters in most terminals.
bool isWide(char32_t codePoint) {
  return isIn(codePoint, {{0x1100, 0x115F},
                          {0x2E80, 0xA4CF},
                          {0xAC00, 0xD7A3},
                          {0xF900, 0xFAFF},
                          {0xFE30, 0xFE6F},
                          {0xFF00, 0xFF60},
                          {0xFFE0, 0xFFE6},
                          {0x1F300, 0x1FAFF},
                          {0x20000, 0x3FFFD}});
}

/// Calls `use` for each character of a UTF-8 text.
template <typename Use>
void forEachCharacter(std::string_view text, Use use) {
  while (!text.empty()) {
    const reading::Utf8Character character = reading::firstCharacter(text);
    const std::size_t length = character.length == 0 ? 1 : character.length;
    use(character.codePoint, text.substr(0, length));
    text.remove_prefix(length);
  }
}

std::size_t columnsOf(std::string_view text) {
  std::size_t columns = 0;
  forEachCharacter(text, [&](char32_t codePoint, std::string_view) { columns += isWide(codePoint) ? 2 : 1; });
  return columns;
}

/// Puts words into lines; a word that is longer than a line is broken.
class Folder {
 public:
  explicit Folder(std::size_t lineWidth) : width(lineWidth) {}

  void add(std::string_view word) {
    const std::size_t columns = columnsOf(word);
    if (used != 0 && used + 1 + columns > width) {
      endLine();
    }
    if (used != 0) {
      line += ' ';
      ++used;
    }
    if (columns <= width) {
      line += word;
      used += columns;
    } else {
      addLong(word);
    }
  }

  std::vector<std::string> finish() {
    endLine();
    return lines;
  }

 private:
  /// Of a path, the pieces between slashes stay whole.
  void addLong(std::string_view word) {
    while (!word.empty()) {
      const std::string_view piece = word.substr(0, std::min(word.find('/'), word.size() - 1) + 1);
      if (used != 0 && used + columnsOf(piece) > width) {
        endLine();
      }
      addCharacters(piece);
      word.remove_prefix(piece.size());
    }
  }

  void addCharacters(std::string_view piece) {
    forEachCharacter(piece, [&](char32_t codePoint, std::string_view bytes) {
      const std::size_t columns = isWide(codePoint) ? 2 : 1;
      if (used + columns > width) {
        endLine();
      }
      line += bytes;
      used += columns;
    });
  }

  void endLine() {
    lines.push_back(line);
    line.clear();
    used = 0;
  }

  std::size_t width;
  std::size_t used = 0;
  std::string line;
  std::vector<std::string> lines;
};

/// The words of a command line; blanks within quotes part none.
std::vector<std::string> commandWords(const std::string& command) {
  std::vector<std::string> words(1);
  bool quoted = false;
  for (const char byte : command) {
    quoted = quoted != (byte == '\'');
    if (byte == ' ' && !quoted) {
      words.emplace_back();
    } else {
      words.back() += byte;
    }
  }
  return words;
}

const char* colourOf(Level level) {
  return level == Level::problem ? "\033[31m" : level == Level::warning ? "\033[33m" : "";
}

}  // namespace

std::vector<std::string> folded(const std::string& text, std::size_t width) {
  Folder folder(width);
  std::string_view rest = text;
  while (true) {
    const std::size_t blank = rest.find(' ');
    folder.add(rest.substr(0, blank));
    if (blank == std::string_view::npos) {
      return folder.finish();
    }
    rest.remove_prefix(blank + 1);
  }
}

std::string counted(std::uint64_t number, const std::string& what) {
  return fmt::format("{} {}{}", number, what, number == 1 ? "" : "s");
}

void Page::verdict(const std::string& text) {
  for (const std::string& line : foldedForm(text, WIDTH)) {
    written += marked("\033[1m", line) + "\n";
  }
}

void Page::heading(const std::string& text) { verdict(text); }

void Page::row(const std::string& label, const std::string& text) {
  std::string left = fmt::format(
      "{:<{}}", std::string(LABEL_INDENT, ' ') + reading::forTerminal(redaction(label)), textIndent);
  if (columnsOf(left) > textIndent || (!label.empty() && left.back() != ' ')) {
    paragraph(LABEL_INDENT, label);
    left = std::string(textIndent, ' ');
  }
  for (const std::string& line : foldedForm(text, WIDTH - textIndent)) {
    written += left + line + "\n";
    left = std::string(textIndent, ' ');
  }
}

void Page::paragraph(std::size_t indent, const std::string& text) {
  for (const std::string& line : foldedForm(text, WIDTH - indent)) {
    written += std::string(indent, ' ') + line + "\n";
  }
}

// A backslash at a line's end joins the lines again.
void Page::command(const std::string& text) {
  std::vector<std::string> lines(1);
  for (const std::string& word : commandWords(reading::forTerminal(redaction(text)))) {
    if (!lines.back().empty() && columnsOf(lines.back()) + columnsOf(word) + COMMAND_INDENT + 3 > WIDTH) {
      lines.back() += " \\";
      lines.emplace_back();
    }
    lines.back() += (lines.back().empty() ? "" : " ") + word;
  }
  for (const std::string& line : lines) {
    for (const std::string& piece : folded(line, WIDTH - COMMAND_INDENT)) {
      written += std::string(COMMAND_INDENT, ' ') + piece + "\n";
    }
  }
}

void Page::level(Level which, const std::string& id) {
  written += marked(colourOf(which), fmt::format("{:<7}", nameOf(which))) + "  " + id + "\n";
}

std::string Page::marked(const char* code, const std::string& text) const {
  return colours && *code != '\0' ? code + text + "\033[0m" : text;
}

std::vector<std::string> Page::foldedForm(const std::string& text, std::size_t width) const {
  return folded(reading::forTerminal(redaction(text)), width);
}

}  // namespace vestra::inspect
