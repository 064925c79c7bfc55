#include "reading/hazard.h"

#include "reading/tcl_command.h"
#include "reading/tcl_text.h"

namespace vestra::reading {
namespace {

constexpr std::size_t WORDS = 9;
constexpr std::size_t KEY_WORD = 4;
constexpr std::size_t VALUE_WORD = 6;

bool isLiterally(const std::string& tclText, const TclWord& word, const std::string& wanted) {
  return word.isLiteral && toBytes(tclText.substr(word.content.begin, word.content.length)) == wanted;
}

bool isReadAsWritten(const WrittenItem& item) {
  const std::string text = toTclText(scriptLineOf(item));
  try {
    const TclCommand command = parseTclCommand(text, 0);
    return command.end() == text.size() && command.words.size() == WORDS &&
           isLiterally(text, command.words[KEY_WORD], item.key) &&
           isLiterally(text, command.words[VALUE_WORD], item.value);
  } catch (const TclSyntaxError&) {
    return false;
  }
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

std::optional<std::string> hazardOf(const WrittenItem& item) {
  return isReadAsWritten(item) ? std::nullopt : std::optional(reasonOf(item));
}

}  // namespace vestra::reading
