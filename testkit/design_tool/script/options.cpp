#include "design_tool/script/options.h"

#include <algorithm>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "reading/visible_text.h"

namespace vestra::design_tool {

using reading::inQuotes;

namespace {

using Names = std::vector<std::string_view>;

bool contains(const Names& names, std::string_view name) {
  return std::find(names.begin(), names.end(), name) != names.end();
}

[[noreturn]] void fail(const Invocation& invocation, const Word& word, const std::string& message) {
  throw ProtocolError(fmt::format("{}: {}", invocation.command, message),
                      invocation.spelled ? word.span : invocation.span);
}

bool isOptionLike(const std::string& word) { return word.rfind('-', 0) == 0; }

bool namesPath(std::string_view option) {
  return option == "-vestra_dir" || option == "-xml" || option == "-html" || option == "-wdm";
}

/// Why a word stands where an option should: nothing but values and contexts reaches the script between
/// quotes.
std::string hintFor(const Names& names, const Invocation& invocation, std::size_t index) {
  const std::vector<Word>& words = invocation.arguments;
  if (index >= 2) {
    const std::string& option = words[index - 2].text;
    const std::string& value = words[index - 1].text;
    if (contains(names, value)) {
      return fmt::format("{} took \"{}\" for its value", option, value);
    }
    if (namesPath(option)) {
      return "a path with blanks reaches the script unquoted";
    }
    if (option == "-key" && !isOptionLike(words[index].text)) {
      return "a key with white space reaches the script unquoted";
    }
  }
  return names.empty() ? "it takes none" : fmt::format("it takes {}", fmt::join(names, ", "));
}

[[noreturn]] void failAtStray(const Invocation& invocation, const Names& names, std::size_t index) {
  const Word& stray = invocation.arguments[index];
  const char* const kind = isOptionLike(stray.text) ? "unknown option" : "unexpected word";
  fail(invocation, stray,
       fmt::format("{} {}; {}", kind, inQuotes(stray.text), hintFor(names, invocation, index)));
}

}  // namespace

Options::Options(const Invocation& invocation, const Names& names) {
  const std::vector<Word>& words = invocation.arguments;
  for (std::size_t i = 0; i < words.size(); i += 2) {
    const auto name = std::find(names.begin(), names.end(), words[i].text);
    if (name == names.end()) {
      failAtStray(invocation, names, i);
    }
    if (i + 1 == words.size()) {
      fail(invocation, words[i], fmt::format("option {} has no value", *name));
    }
    if (!values.emplace(*name, &words[i + 1]).second) {
      fail(invocation, words[i], fmt::format("option {} is given twice", *name));
    }
  }
  for (const std::string_view name : names) {
    if (values.count(name) != 0) {
      continue;
    }
    throw ProtocolError(fmt::format("{}: option {} is missing", invocation.command, name), invocation.span);
  }
}

}  // namespace vestra::design_tool
