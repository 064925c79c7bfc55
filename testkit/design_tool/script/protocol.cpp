#include "design_tool/script/protocol.h"

#include <charconv>
#include <cstdint>

#include <fmt/format.h>

#include "design_tool/script/options.h"
#include "reading/visible_text.h"

namespace vestra::design_tool {

using reading::inQuotes;

namespace {

constexpr std::string_view INIT = "vestra_init";
constexpr std::string_view REGISTER_CLIENT = "vestra_register_client";
constexpr std::string_view ADD_DATA = "vestra_add_data";
constexpr std::string_view TRANSMIT = "vestra_transmit";
constexpr std::string_view TERMINATE = "vestra_terminate";

Span placeOf(const Invocation& invocation, const Word& word) {
  return invocation.spelled ? word.span : invocation.span;
}

/// What the word would be if the interpreter took nothing but a pair of double quotes away.
std::string_view withoutQuotes(std::string_view spelling) {
  const bool isQuoted = spelling.size() >= 2 && spelling.front() == '"' && spelling.back() == '"';
  return isQuoted ? spelling.substr(1, spelling.size() - 2) : spelling;
}

bool isBraced(std::string_view spelling) {
  return spelling.size() >= 2 && spelling.front() == '{' && spelling.back() == '}';
}

std::string withPairsOfBackslashesRead(std::string_view spelling) {
  std::string text;
  for (std::size_t i = 0; i < spelling.size(); ++i) {
    text += spelling[i];
    if (spelling.substr(i, 2) == "\\\\") {
      ++i;
    }
  }
  return text;
}

/// A value in braces was put there by hand, by someone who knows what the interpreter does.
bool isValueAsMeant(const Word& word) {
  return withoutQuotes(word.spelling) == word.text || isBraced(word.spelling);
}

/// Contexts are written with pairs of backslashes on purpose, for the interpreter to read each as one.
bool isContextAsMeant(const Word& word) {
  return withPairsOfBackslashesRead(withoutQuotes(word.spelling)) == word.text || isBraced(word.spelling);
}

/// Keys and clients are written bare, so that quotes and braces that the interpreter takes away were part of
/// them.
bool isBareAsMeant(const Word& word) { return word.spelling == word.text; }

std::string change(const char* what, std::string_view before, const std::string& after) {
  return fmt::format("Tcl has changed the {}: {} became {}", what, inQuotes(before), inQuotes(after));
}

std::uint32_t readClientId(const Invocation& invocation, const Word& word) {
  std::uint32_t number = 0;
  const char* const end = word.text.data() + word.text.size();
  const auto [stop, error] = std::from_chars(word.text.data(), end, number);
  if (error == std::errc() && stop == end && fmt::format("{}", number) == word.text) {
    return number;
  }
  throw ProtocolError(fmt::format("{}: -clientid {} is no decimal number from 0 to 4294967295",
                                  invocation.command, inQuotes(word.text)),
                      placeOf(invocation, word));
}

void refuseSharedPaths(const Invocation& invocation, const Options& options) {
  std::map<std::string, std::string_view> users;
  for (const std::string_view option : {"-xml", "-html", "-wdm"}) {
    const Word& path = options[option];
    const auto [user, isNew] = users.emplace(path.text, option);
    if (isNew) {
      continue;
    }
    throw ProtocolError(
        fmt::format("{}: {} and {} name the same file", invocation.command, user->second, option),
        placeOf(invocation, path));
  }
}

[[noreturn]] void failAt(const Invocation& invocation, const std::string& what) {
  throw ProtocolError(fmt::format("{} {}", invocation.command, what), invocation.span);
}

}  // namespace

const std::vector<std::string_view>& Protocol::commands() {
  static const std::vector<std::string_view> names{INIT, REGISTER_CLIENT, ADD_DATA, TRANSMIT, TERMINATE};
  return names;
}

void Protocol::take(const Invocation& invocation) {
  checkTurn(invocation);
  if (invocation.command == INIT) {
    init(invocation);
  } else if (invocation.command == REGISTER_CLIENT) {
    registerClient(invocation);
  } else if (invocation.command == ADD_DATA) {
    addData(invocation);
  } else if (invocation.command == TRANSMIT) {
    transmit(invocation);
  } else {
    terminate(invocation);
  }
}

std::string_view Protocol::missingCommand() const {
  switch (stage) {
    case Stage::Start:
      return INIT;
    case Stage::Open:
      return TRANSMIT;
    case Stage::Transmitted:
    case Stage::Terminated:
      break;
  }
  return TERMINATE;
}

void Protocol::checkTurn(const Invocation& invocation) const {
  if (stage == Stage::Terminated) {
    failAt(invocation, "comes after vestra_terminate");
  }
  if (invocation.command == INIT) {
    if (stage != Stage::Start) {
      failAt(invocation, "is given twice");
    }
    return;
  }
  if (stage == Stage::Start) {
    failAt(invocation, "comes before vestra_init");
  }
  if (invocation.command == TERMINATE) {
    if (stage == Stage::Open) {
      failAt(invocation, "comes before vestra_transmit");
    }
    return;
  }
  if (stage == Stage::Transmitted) {
    failAt(invocation, invocation.command == TRANSMIT ? "is given twice" : "comes after vestra_transmit");
  }
}

void Protocol::init(const Invocation& invocation) {
  const Options options(invocation, {"-vestra_dir"});
  report.vestraDir = options["-vestra_dir"].text;
  stage = Stage::Open;
}

void Protocol::registerClient(const Invocation& invocation) {
  const Options options(invocation, {"-client"});
  report.registrations.push_back({options["-client"].text, invocation.line});
}

void Protocol::addData(const Invocation& invocation) {
  const Options options(invocation, {"-client", "-key", "-value", "-context"});
  const Word& client = options["-client"];
  const Word& context = options["-context"];
  const Word& key = options["-key"];
  const Word& value = options["-value"];
  if (invocation.spelled) {
    warnOfChanges(invocation, client, key, value, context);
  }
  report.items.push_back({sectionOf(client.text, context.text), key.text, value.text, invocation.line});
}

void Protocol::transmit(const Invocation& invocation) {
  const Options options(invocation, {"-clientid", "-regid", "-xml", "-html", "-wdm", "-intro"});
  refuseSharedPaths(invocation, options);
  report.transmission = {readClientId(invocation, options["-clientid"]),
                         options["-regid"].text,
                         options["-xml"].text,
                         options["-html"].text,
                         options["-wdm"].text,
                         options["-intro"].text,
                         invocation.line};
  stage = Stage::Transmitted;
}

void Protocol::terminate(const Invocation& invocation) {
  const Options none(invocation, {});
  stage = Stage::Terminated;
}

std::size_t Protocol::sectionOf(const std::string& client, const std::string& context) {
  const auto [position, isNew] = sectionPositions.emplace(std::pair(client, context), report.sections.size());
  if (isNew) {
    report.sections.push_back({client, context});
  }
  return position->second;
}

void Protocol::warnOfChanges(const Invocation& invocation, const Word& client, const Word& key,
                             const Word& value, const Word& context) {
  const auto warn = [&](const std::string& message) {
    report.warnings.push_back({invocation.line, message});
  };
  if (!isBareAsMeant(client)) {
    warn(change("client", client.spelling, client.text));
  }
  if (!isBareAsMeant(key)) {
    warn(change("key", key.spelling, key.text));
  }
  if (!isValueAsMeant(value)) {
    warn(change("value", withoutQuotes(value.spelling), value.text));
  }
  if (!isContextAsMeant(context)) {
    warn(change("context", withoutQuotes(context.spelling), context.text));
  }
}

}  // namespace vestra::design_tool
