#include "reading/written_items.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <map>
#include <optional>
#include <set>
#include <utility>

namespace vestra::reading {
namespace {

constexpr std::string_view COMMAND = "vestra_add_data -client ";
constexpr std::string_view KEY = " -key ";
constexpr std::string_view VALUE = " -value \"";
constexpr std::string_view CONTEXT = "\" -context \"";
constexpr std::string_view END = "\"\n";

constexpr std::array<std::string_view, 3> CLIENTS{"project", "kelvo", "tavlo"};

struct Context {
  std::string_view client;
  std::string_view written;
  std::string_view read;
};

constexpr std::array<Context, 6> CONTEXTS{{
    {"project", "software_version_and_target_device", "software_version_and_target_device"},
    {"project", "user_environment", "user_environment"},
    {"kelvo", "kelvo\\\\command_line_options", "kelvo\\command_line_options"},
    {"kelvo", "kelvo\\\\usage", "kelvo\\usage"},
    {"tavlo", "tavlo\\\\command_line_options", "tavlo\\command_line_options"},
    {"tavlo", "tavlo\\\\usage", "tavlo\\usage"},
}};

bool standsAt(std::string_view text, std::size_t position, std::string_view wanted) {
  return text.compare(position, wanted.size(), wanted) == 0;
}

bool commandBeginsAt(std::string_view script, std::size_t position) {
  return position >= script.size() || standsAt(script, position, COMMAND) ||
         standsAt(script, position, "vestra_register_client -client ") ||
         standsAt(script, position, "vestra_transmit -clientid ");
}

/// Where an item's value ends and what its command says behind that.
struct Ending {
  std::size_t valueEnd;
  std::size_t commandEnd;
  std::string context;
};

/// The context named at `position`, with the identifier that may follow it.
std::optional<Ending> endingAt(std::string_view script, std::size_t position, const Context& context) {
  const std::size_t begin = position + CONTEXT.size();
  if (!standsAt(script, begin, context.written)) {
    return std::nullopt;
  }
  const std::size_t suffix = begin + context.written.size();
  const std::size_t end = script.find('"', suffix);
  const bool isWhole = end == suffix || standsAt(script, suffix, "/");
  if (!isWhole || !standsAt(script, std::min(end, script.size()), END) ||
      !commandBeginsAt(script, end + END.size())) {
    return std::nullopt;
  }
  const std::string_view identifier = script.substr(suffix, end - suffix);
  return Ending{position, end + END.size(), std::string(context.read).append(identifier)};
}

std::string lowerCased(std::string text) {
  for (char& letter : text) {
    letter = static_cast<char>(std::tolower(static_cast<unsigned char>(letter)));
  }
  return text;
}

/// What the host handed over, in the order in which the script must have it.
class HandedItems {
 public:
  explicit HandedItems(const std::vector<WrittenItem>& items) {
    for (const WrittenItem& item : items) {
      if (item.context == CONTEXTS[0].read) {
        projectFacts.emplace(lowerCased(item.key), item);
      } else {
        queues[item.context].items.push_back(&item);
      }
    }
  }

  /// The item whose command begins at `position`; null when it is none of these.
  const WrittenItem* takeAt(std::string_view script, std::size_t position) {
    for (auto& [context, queue] : queues) {
      if (queue.next < queue.items.size() && stands(*queue.items[queue.next], script, position)) {
        return queue.items[queue.next++];
      }
    }
    return projectFactAt(script, position);
  }

 private:
  struct Queue {
    std::vector<const WrittenItem*> items;
    std::size_t next = 0;
  };

  static bool stands(const WrittenItem& item, std::string_view script, std::size_t position) {
    return standsAt(script, position, scriptLineOf(item));
  }

  /// Of a project's facts, the first with a key is written, in the order of a list.
  const WrittenItem* projectFactAt(std::string_view script, std::size_t position) {
    const std::string head = std::string(COMMAND).append(CONTEXTS[0].client).append(KEY);
    if (projectFacts.empty() || !standsAt(script, position, head)) {
      return nullptr;
    }
    const std::size_t key = position + head.size();
    const std::size_t keyEnd = script.find(VALUE, key);
    if (keyEnd == std::string_view::npos) {
      return nullptr;
    }
    const auto found = projectFacts.find(std::string(script.substr(key, keyEnd - key)));
    if (found == projectFacts.end()) {
      return nullptr;
    }
    found->second.key = found->first;
    return stands(found->second, script, position) ? &found->second : nullptr;
  }

  std::map<std::string, Queue> queues;
  std::map<std::string, WrittenItem> projectFacts;
};

class Reader {
 public:
  Reader(std::string_view scriptText, const std::vector<WrittenItem>& handedItems, const UseItem& user)
      : script(scriptText), handed(handedItems), use(user) {}

  std::size_t read() {
    for (std::size_t begin = nextCommand(0); begin != std::string_view::npos;) {
      const std::size_t end = readItem(begin);
      begin = nextCommand(end);
    }
    return readTo;
  }

 private:
  /// Where the next command begins that a line feed, or nothing, stands before.
  std::size_t nextCommand(std::size_t from) const {
    std::size_t found = script.find(COMMAND, from);
    while (found != std::string_view::npos && found != 0 && script[found - 1] != '\n') {
      found = script.find(COMMAND, found + 1);
    }
    return found;
  }

  /// Gives where the search for the next command goes on.
  std::size_t readItem(std::size_t begin) {
    if (const WrittenItem* item = handed.takeAt(script, begin)) {
      WrittenItem read = *item;
      read.line = lineAt(begin);
      const std::size_t end = begin + scriptLineOf(*item).size();
      take(std::move(read), begin, end);
      return end;
    }
    const std::size_t clientBegin = begin + COMMAND.size();
    for (const std::string_view client : CLIENTS) {
      if (standsAt(script, clientBegin, client) && standsAt(script, clientBegin + client.size(), KEY)) {
        return readItemOf(client, begin, clientBegin + client.size() + KEY.size());
      }
    }
    return clientBegin;
  }

  std::size_t readItemOf(std::string_view client, std::size_t begin, std::size_t key) {
    const std::size_t keyEnd = script.find(VALUE, key);
    if (keyEnd == std::string_view::npos) {
      return keyEnd;
    }
    const std::size_t value = keyEnd + VALUE.size();
    const auto ending = find(client, value);
    if (!ending) {
      return value;
    }
    take({std::string(client), ending->context, std::string(script.substr(key, keyEnd - key)),
          std::string(script.substr(value, ending->valueEnd - value)), lineAt(begin)},
         begin, ending->commandEnd);
    return ending->commandEnd;
  }

  void take(WrittenItem item, std::size_t begin, std::size_t end) {
    use(std::move(item), script.substr(readTo, begin - readTo));
    readTo = end;
  }

  /// A client without an ending here has none further on, and is not looked for again.
  std::optional<Ending> find(std::string_view client, std::size_t from) {
    if (finished.count(client) != 0) {
      return std::nullopt;
    }
    for (std::size_t at = script.find(CONTEXT, from); at != std::string_view::npos;
         at = script.find(CONTEXT, at + 1)) {
      for (const Context& context : CONTEXTS) {
        if (context.client == client) {
          if (auto ending = endingAt(script, at, context)) {
            return ending;
          }
        }
      }
    }
    finished.insert(client);
    return std::nullopt;
  }

  std::size_t lineAt(std::size_t position) {
    const auto begin = script.begin() + static_cast<std::ptrdiff_t>(countedTo);
    const auto end = script.begin() + static_cast<std::ptrdiff_t>(position);
    line += static_cast<std::size_t>(std::count(begin, end, '\n'));
    countedTo = position;
    return line;
  }

  std::string_view script;
  HandedItems handed;
  const UseItem& use;
  std::size_t readTo = 0;
  std::set<std::string_view> finished;
  std::size_t countedTo = 0;
  std::size_t line = 1;
};

}  // namespace

std::vector<WrittenItem> itemsWrittenIn(std::string_view script) { return itemsWrittenIn(script, {}); }

std::vector<WrittenItem> itemsWrittenIn(std::string_view script, const std::vector<WrittenItem>& handed) {
  std::vector<WrittenItem> items;
  Reader(script, handed, [&](WrittenItem item, std::string_view) {
    items.push_back(std::move(item));
  }).read();
  return items;
}

std::size_t forEachItemWrittenIn(std::string_view script, const UseItem& use) {
  return Reader(script, {}, use).read();
}

std::string scriptLineOf(const WrittenItem& item) {
  std::string context;
  for (const char letter : item.context) {
    context.append(letter == '\\' ? 2 : 1, letter);
  }
  std::string line(COMMAND);
  line.append(item.client).append(KEY).append(item.key).append(VALUE).append(item.value);
  return line.append(CONTEXT).append(context).append(END);
}

}  // namespace vestra::reading
