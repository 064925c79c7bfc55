#include "script_items.h"

#include <array>
#include <optional>

namespace vestra::testkit {
namespace {

const std::string COMMAND = "vestra_add_data -client ";
const std::string KEY = " -key ";
const std::string VALUE = " -value \"";
const std::string CONTEXT = "\" -context \"";
const std::string END = "\"\n";

struct Section {
  const char* client;
  const char* written;
  const char* read;
};

// By Oza::Vestra::SectionType.
constexpr std::array<Section, 6> SECTIONS = {{
    {"project", "software_version_and_target_device", "software_version_and_target_device"},
    {"project", "user_environment", "user_environment"},
    {"kelvo", "kelvo\\\\command_line_options", "kelvo\\command_line_options"},
    {"kelvo", "kelvo\\\\usage", "kelvo\\usage"},
    {"tavlo", "tavlo\\\\command_line_options", "tavlo\\command_line_options"},
    {"tavlo", "tavlo\\\\usage", "tavlo\\usage"},
}};

bool standsAt(const std::string& text, std::size_t position, const std::string& wanted) {
  return text.compare(position, wanted.size(), wanted) == 0;
}

bool commandBeginsAt(const std::string& script, std::size_t position) {
  return position >= script.size() || standsAt(script, position, COMMAND) ||
         standsAt(script, position, "vestra_register_client -client ") ||
         standsAt(script, position, "vestra_transmit -clientid ");
}

struct Found {
  Item item;
  std::size_t end;
};

/// The item of this section whose command begins at `begin`: it ends where its
/// context is named and another command begins, however its texts look.
std::optional<Found> itemAt(const std::string& script, std::size_t begin, const Section& section) {
  const std::string head = COMMAND + section.client + KEY;
  const std::string tail = CONTEXT + section.written + END;
  if (!standsAt(script, begin, head)) {
    return std::nullopt;
  }
  const std::size_t key = begin + head.size();
  const std::size_t keyEnd = script.find(VALUE, key);
  if (keyEnd == std::string::npos) {
    return std::nullopt;
  }
  const std::size_t value = keyEnd + VALUE.size();
  for (std::size_t end = script.find(tail, value); end != std::string::npos;
       end = script.find(tail, end + 1)) {
    if (commandBeginsAt(script, end + tail.size())) {
      return Found{
          {section.client, section.read, script.substr(key, keyEnd - key), script.substr(value, end - value)},
          end + tail.size()};
    }
  }
  return std::nullopt;
}

/// Of a client's two sections, the one whose end comes first.
std::optional<Found> itemAt(const std::string& script, std::size_t begin) {
  std::optional<Found> nearest;
  for (const Section& section : SECTIONS) {
    const auto found = itemAt(script, begin, section);
    if (found && (!nearest || found->end < nearest->end)) {
      nearest = found;
    }
  }
  return nearest;
}

}  // namespace

std::vector<Item> itemsWrittenIn(const std::string& script) {
  std::vector<Item> items;
  std::size_t position = script.find("\n" + COMMAND);
  while (position != std::string::npos) {
    const auto found = itemAt(script, position + 1);
    if (found) {
      items.push_back(found->item);
    }
    position = script.find("\n" + COMMAND, found ? found->end - 1 : position + 1);
  }
  return items;
}

std::string scriptLineOf(const Item& item) {
  for (const Section& section : SECTIONS) {
    if (item.context == section.read) {
      return COMMAND + item.client + KEY + item.key + VALUE + item.value + CONTEXT + section.written + END;
    }
  }
  return COMMAND + item.client + KEY + item.key + VALUE + item.value + CONTEXT + item.context + END;
}

std::string contextOf(Oza::Vestra::SectionType section) { return SECTIONS.at(section).read; }

}  // namespace vestra::testkit
