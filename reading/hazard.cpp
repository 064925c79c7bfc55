#include "reading/hazard.h"

#include <algorithm>
#include <cctype>
#include <string_view>

#include <tcl.h>

#include "reading/tcl_text.h"

namespace vestra::reading {
namespace {

constexpr int WORDS = 9;
constexpr int KEY_WORD = 4;
constexpr int VALUE_WORD = 6;

/// Whether the command gets this word as it was written: no substitution takes place in it.
bool isLiterally(const Tcl_Parse& command, int index, const std::string& wanted) {
  const Tcl_Token* word = command.tokenPtr;
  for (int i = 0; i < index; ++i) {
    word += word->numComponents + 1;
  }
  const Tcl_Token* const begin = word + 1;
  const Tcl_Token* const end = begin + word->numComponents;
  return std::all_of(begin, end, [](const Tcl_Token& part) { return part.type == TCL_TOKEN_TEXT; }) &&
         toBytes({begin->start, static_cast<std::size_t>(end[-1].start + end[-1].size - begin->start)}) ==
             wanted;
}

bool isReadAsWritten(const WrittenItem& item) {
  const std::string text = toTclText(scriptLineOf(item));
  Tcl_Parse command;
  if (Tcl_ParseCommand(nullptr, text.data(), static_cast<int>(text.size()), 0, &command) != TCL_OK) {
    return false;
  }
  const bool isWhole = command.commandStart + command.commandSize == text.data() + text.size();
  const bool isSame = isWhole && command.numWords == WORDS && isLiterally(command, KEY_WORD, item.key) &&
                      isLiterally(command, VALUE_WORD, item.value);
  Tcl_FreeParse(&command);
  return isSame;
}

bool holds(const std::string& text, const char* characters) {
  return text.find_first_of(characters) != std::string::npos;
}

/// Letters, digits, and what else is said.
bool isPlain(const std::string& text, std::string_view others) {
  return !text.empty() && std::all_of(text.begin(), text.end(), [&](unsigned char byte) {
    return (byte < 0x80 && std::isalnum(byte) != 0) || byte == '_' || byte == '.' ||
           others.find(static_cast<char>(byte)) != std::string_view::npos;
  });
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

std::string reasonOf(const WrittenItem& item) {
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

// Most items need no parser.
std::optional<std::string> hazardOf(const WrittenItem& item) {
  return (isPlain(item.key, "") && isPlain(item.value, " ,;:/+-()")) || isReadAsWritten(item)
             ? std::nullopt
             : std::optional(reasonOf(item));
}

}  // namespace vestra::reading
