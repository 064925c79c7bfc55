#include <tcl.h>

#include <optional>
#include <utility>

#include "script_items.h"

namespace vestra::testkit {
namespace {

constexpr int WORDS = 9;
constexpr int KEY_WORD = 4;
constexpr int VALUE_WORD = 6;

/// Tcl's own form of a byte string whose bytes are its characters.
std::string widened(const std::string& bytes) {
  std::string text;
  for (const char byte : bytes) {
    const auto code = static_cast<unsigned char>(byte);
    if (code != 0 && code < 0x80) {
      text += byte;
    } else {
      text += static_cast<char>(0xC0 | (code >> 6));
      text += static_cast<char>(0x80 | (code & 0x3F));
    }
  }
  return text;
}

/// One command as Tcl's parser sees it, before any substitution.
class ParsedCommand {
 public:
  explicit ParsedCommand(std::string commandText)
      : command(std::move(commandText)),
        valid(Tcl_ParseCommand(nullptr, command.data(), static_cast<int>(command.size()), 0, &parse) ==
              TCL_OK),
        complete(valid && parse.commandSize == static_cast<int>(command.size())) {}
  ParsedCommand(const ParsedCommand&) = delete;
  ParsedCommand& operator=(const ParsedCommand&) = delete;
  ~ParsedCommand() {
    if (valid) {
      Tcl_FreeParse(&parse);
    }
  }

  /// Whether the command is all of the text and has that many words.
  bool hasWords(int count) const { return complete && parse.numWords == count; }

  /// The word's text; nothing when something would be substituted in it.
  std::optional<std::string> literalWord(int wanted) const {
    const Tcl_Token* word = parse.tokenPtr;
    for (int i = 0; i < wanted; ++i) {
      word += word->numComponents + 1;
    }
    std::string text;
    for (int i = 1; i <= word->numComponents; ++i) {
      if (word[i].type != TCL_TOKEN_TEXT) {
        return std::nullopt;
      }
      text.append(word[i].start, static_cast<std::size_t>(word[i].size));
    }
    return text;
  }

 private:
  // The parse points into it.
  std::string command;
  Tcl_Parse parse{};
  bool valid;
  bool complete;
};

bool isReadAsWritten(const Item& item) {
  const ParsedCommand command(widened(scriptLineOf(item)));
  return command.hasWords(WORDS) && command.literalWord(KEY_WORD) == widened(item.key) &&
         command.literalWord(VALUE_WORD) == widened(item.value);
}

bool holds(const std::string& text, const char* characters) {
  return text.find_first_of(characters) != std::string::npos;
}

class Reasons {
 public:
  void addIf(bool applies, const std::string& reason) {
    if (applies) {
      text += (text.empty() ? "" : ", ") + reason;
    }
  }
  const std::string& joined() const { return text; }

 private:
  std::string text;
};

void explainSubstitutions(const std::string& text, const std::string& whose, Reasons& reasons) {
  reasons.addIf(holds(text, "["), whose + " holds an opening bracket, which begins a command");
  reasons.addIf(holds(text, "$"), whose + " holds a dollar sign, which begins a variable");
  reasons.addIf(holds(text, "\\"), whose + " holds a backslash, which changes what follows it");
}

std::string reasonOf(const Item& item) {
  Reasons reasons;
  reasons.addIf(item.key.empty(), "the key is empty");
  reasons.addIf(holds(item.key, " \t\n\v\f\r"), "the key holds white space, which ends it");
  reasons.addIf(holds(item.key, ";"), "the key holds a semicolon, which ends the command");
  reasons.addIf(item.key.rfind('"', 0) == 0, "the key begins with a double quote");
  reasons.addIf(item.key.rfind('{', 0) == 0, "the key begins with a brace");
  explainSubstitutions(item.key, "the key", reasons);
  reasons.addIf(holds(item.value, "\""), "the value holds a double quote, which ends it");
  explainSubstitutions(item.value, "the value", reasons);
  return reasons.joined();
}

}  // namespace

std::vector<Hazard> HostRun::hazards() const {
  std::vector<Hazard> found;
  for (const Item& item : writtenItems) {
    if (!isReadAsWritten(item)) {
      found.push_back({item, reasonOf(item)});
    }
  }
  return found;
}

}  // namespace vestra::testkit
