#include "design_tool/script/protocol.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <vector>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "reading/visible_text.h"

namespace vestra::design_tool {

using reading::inQuotes;

namespace {

constexpr std::string_view INIT = Protocol::COMMANDS[0];
constexpr std::string_view REGISTER_CLIENT = Protocol::COMMANDS[1];
constexpr std::string_view ADD_DATA = Protocol::COMMANDS[2];
constexpr std::string_view TRANSMIT = Protocol::COMMANDS[3];
constexpr std::string_view TERMINATE = Protocol::COMMANDS[4];

using Names = std::vector<std::string_view>;
using Options = std::map<std::string_view, Word>;

[[noreturn]] void failAt(const Invocation& invocation, const Word& word, const std::string& message) {
  throw ProtocolError(fmt::format("{}: {}", invocation.command, message), invocation.placeOf(word));
}

bool isOptionLike(const std::string& word) { return word.rfind('-', 0) == 0; }

/// Why a word stands where an option is expected: only values and contexts are quoted in the script.
std::string hintFor(const Names& names, const std::vector<Word>& words, std::size_t index) {
  if (index >= 2) {
    const std::string& option = words[index - 2].text;
    const std::string& value = words[index - 1].text;
    if (std::find(names.begin(), names.end(), value) != names.end()) {
      return fmt::format("{} took \"{}\" for its value", option, value);
    }
    if (option == "-vestra_dir" || option == "-xml" || option == "-html" || option == "-wdm") {
      return "a path with blanks reaches the script unquoted";
    }
    if (option == "-key" && !isOptionLike(words[index].text)) {
      return "a key with white space reaches the script unquoted";
    }
  }
  return names.empty() ? "it takes none" : fmt::format("it takes {}", fmt::join(names, ", "));
}

/// Pairs of a name and a value, in any order; each name exactly once.
Options optionsOf(const Invocation& invocation, const Names& names) {
  const std::vector<Word>& words = invocation.arguments;
  Options options;
  for (std::size_t i = 0; i < words.size(); i += 2) {
    const auto name = std::find(names.begin(), names.end(), words[i].text);
    if (name == names.end()) {
      failAt(invocation, words[i],
             fmt::format("{} {}; {}", isOptionLike(words[i].text) ? "unknown option" : "unexpected word",
                         inQuotes(words[i].text), hintFor(names, words, i)));
    }
    if (i + 1 == words.size()) {
      failAt(invocation, words[i], fmt::format("option {} has no value", *name));
    }
    if (!options.emplace(*name, words[i + 1]).second) {
      failAt(invocation, words[i], fmt::format("option {} is given twice", *name));
    }
  }
  for (const std::string_view name : names) {
    if (options.count(name) == 0) {
      throw ProtocolError(fmt::format("{}: option {} is missing", invocation.command, name), invocation.span);
    }
  }
  return options;
}

bool isIn(std::string_view spelling, char first, char last) {
  return spelling.size() >= 2 && spelling.front() == first && spelling.back() == last;
}

std::string_view withoutQuotes(std::string_view spelling) {
  return isIn(spelling, '"', '"') ? spelling.substr(1, spelling.size() - 2) : spelling;
}

/// Contexts are written with pairs of backslashes on purpose, for the interpreter to read each as one.
std::string withSingleBackslashes(std::string_view spelling) {
  std::string text;
  for (std::size_t i = 0; i < spelling.size(); ++i) {
    text += spelling[i];
    i += spelling.substr(i, 2) == "\\\\" ? 1 : 0;
  }
  return text;
}

std::uint32_t readClientId(const Invocation& invocation, const Word& word) {
  std::uint32_t number = 0;
  std::from_chars(word.text.data(), word.text.data() + word.text.size(), number);
  if (std::to_string(number) != word.text) {
    failAt(invocation, word,
           fmt::format("-clientid {} is no decimal number from 0 to 4294967295", inQuotes(word.text)));
  }
  return number;
}

}  // namespace

void Protocol::take(const Invocation& invocation) {
  const std::string complaint = complaintAbout(invocation.command);
  if (!complaint.empty()) {
    throw ProtocolError(fmt::format("{} {}", invocation.command, complaint), invocation.span);
  }
  if (invocation.command == INIT) {
    report.vestraDir = optionsOf(invocation, {"-vestra_dir"}).at("-vestra_dir").text;
    stage = Stage::Open;
  } else if (invocation.command == REGISTER_CLIENT) {
    report.registrations.push_back({optionsOf(invocation, {"-client"}).at("-client").text, invocation.line});
  } else if (invocation.command == ADD_DATA) {
    addData(invocation);
  } else if (invocation.command == TRANSMIT) {
    transmit(invocation);
    stage = Stage::Transmitted;
  } else {
    optionsOf(invocation, {});
    stage = Stage::Terminated;
  }
}

const char* Protocol::missingCommand() const {
  return (stage == Stage::Start ? INIT : stage == Stage::Open ? TRANSMIT : TERMINATE).data();
}

/// Empty when the command may come now.
std::string Protocol::complaintAbout(std::string_view command) const {
  if (stage == Stage::Terminated) {
    return "comes after vestra_terminate";
  }
  if (command == INIT) {
    return stage == Stage::Start ? "" : "is given twice";
  }
  if (stage == Stage::Start) {
    return "comes before vestra_init";
  }
  if (command == TERMINATE) {
    return stage == Stage::Open ? "comes before vestra_transmit" : "";
  }
  if (stage == Stage::Open) {
    return "";
  }
  return command == TRANSMIT ? "is given twice" : "comes after vestra_transmit";
}

void Protocol::addData(const Invocation& invocation) {
  const Options options = optionsOf(invocation, {"-client", "-key", "-value", "-context"});
  const Word& client = options.at("-client");
  const Word& key = options.at("-key");
  const Word& value = options.at("-value");
  const Word& context = options.at("-context");
  const auto warnOfChange = [&](const char* what, const Word& word, std::string_view shown,
                                std::string_view meant) {
    if (invocation.spelled && meant != word.text) {
      report.warnings.push_back({invocation.line, fmt::format("Tcl has changed the {}: {} became {}", what,
                                                              inQuotes(shown), inQuotes(word.text))});
    }
  };
  // Keys and clients are written bare: quotes and braces that the interpreter takes away were part of them.
  warnOfChange("client", client, client.spelling, client.spelling);
  warnOfChange("key", key, key.spelling, key.spelling);
  if (!isIn(value.spelling, '{', '}')) {
    warnOfChange("value", value, withoutQuotes(value.spelling), withoutQuotes(value.spelling));
  }
  if (!isIn(context.spelling, '{', '}')) {
    const std::string_view spelling = withoutQuotes(context.spelling);
    warnOfChange("context", context, spelling, withSingleBackslashes(spelling));
  }
  report.items.push_back(
      {sectionOf(client.text, context.text, invocation.line), key.text, value.text, invocation.line});
}

void Protocol::transmit(const Invocation& invocation) {
  const Options options = optionsOf(invocation, {"-clientid", "-regid", "-xml", "-html", "-wdm", "-intro"});
  report.transmission = {readClientId(invocation, options.at("-clientid")),
                         options.at("-regid").text,
                         options.at("-xml").text,
                         options.at("-html").text,
                         options.at("-wdm").text,
                         options.at("-intro").text,
                         invocation.line};
}

std::size_t Protocol::sectionOf(const std::string& client, const std::string& context, std::size_t line) {
  const auto [position, isNew] = sectionPositions.emplace(std::pair(client, context), report.sections.size());
  if (isNew) {
    report.sections.push_back({client, context, line});
  }
  return position->second;
}

}  // namespace vestra::design_tool
