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
using Options = std::map<std::string_view, std::string>;

[[noreturn]] void fail(const Invocation& invocation, const std::string& message) {
  throw ProtocolError(fmt::format("{}: {}", invocation.command, message));
}

bool isOptionLike(const std::string& word) { return word.rfind('-', 0) == 0; }

/// Why a word stands where an option is expected: only values and contexts are quoted in the script.
std::string hintFor(const Names& names, const std::vector<std::string>& words, std::size_t index) {
  if (index >= 2) {
    const std::string& option = words[index - 2];
    const std::string& value = words[index - 1];
    if (std::find(names.begin(), names.end(), value) != names.end()) {
      return fmt::format("{} took \"{}\" for its value", option, value);
    }
    if (option == "-vestra_dir" || option == "-xml" || option == "-html" || option == "-wdm") {
      return "a path with blanks reaches the script unquoted";
    }
    if (option == "-key" && !isOptionLike(words[index])) {
      return "a key with white space reaches the script unquoted";
    }
  }
  return names.empty() ? "it takes none" : fmt::format("it takes {}", fmt::join(names, ", "));
}

/// Pairs of a name and a value, in any order; each name exactly once.
Options optionsOf(const Invocation& invocation, const Names& names) {
  const std::vector<std::string>& words = invocation.arguments;
  Options options;
  for (std::size_t i = 0; i < words.size(); i += 2) {
    const auto name = std::find(names.begin(), names.end(), words[i]);
    if (name == names.end()) {
      fail(invocation, fmt::format("{} {}; {}", isOptionLike(words[i]) ? "unknown option" : "unexpected word",
                                   inQuotes(words[i]), hintFor(names, words, i)));
    }
    if (i + 1 == words.size()) {
      fail(invocation, fmt::format("option {} has no value", *name));
    }
    if (!options.emplace(*name, words[i + 1]).second) {
      fail(invocation, fmt::format("option {} is given twice", *name));
    }
  }
  for (const std::string_view name : names) {
    if (options.count(name) == 0) {
      fail(invocation, fmt::format("option {} is missing", name));
    }
  }
  return options;
}

std::uint32_t readClientId(const Invocation& invocation, const std::string& word) {
  std::uint32_t number = 0;
  std::from_chars(word.data(), word.data() + word.size(), number);
  if (std::to_string(number) != word) {
    fail(invocation, fmt::format("-clientid {} is no decimal number from 0 to 4294967295", inQuotes(word)));
  }
  return number;
}

}  // namespace

void Protocol::take(const Invocation& invocation) {
  const std::string complaint = complaintAbout(invocation.command);
  if (!complaint.empty()) {
    throw ProtocolError(fmt::format("{} {}", invocation.command, complaint));
  }
  if (invocation.command == INIT) {
    report.vestraDir = optionsOf(invocation, {"-vestra_dir"}).at("-vestra_dir");
    stage = Stage::Open;
  } else if (invocation.command == REGISTER_CLIENT) {
    report.registrations.push_back({optionsOf(invocation, {"-client"}).at("-client"), invocation.line});
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
  const std::string& client = options.at("-client");
  const std::string& context = options.at("-context");
  const auto [position, isNew] = sectionPositions.emplace(std::pair(client, context), report.sections.size());
  if (isNew) {
    report.sections.push_back({client, context, invocation.line});
  }
  report.items.push_back({position->second, options.at("-key"), options.at("-value"), invocation.line});
}

void Protocol::transmit(const Invocation& invocation) {
  const Options options = optionsOf(invocation, {"-clientid", "-regid", "-xml", "-html", "-wdm", "-intro"});
  report.transmission = {readClientId(invocation, options.at("-clientid")),
                         options.at("-regid"),
                         options.at("-xml"),
                         options.at("-html"),
                         options.at("-wdm"),
                         options.at("-intro"),
                         invocation.line};
}

}  // namespace vestra::design_tool
