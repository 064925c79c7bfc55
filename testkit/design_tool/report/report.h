#ifndef VESTRA_DESIGN_TOOL_REPORT_H
#define VESTRA_DESIGN_TOOL_REPORT_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace vestra::design_tool {

/// Something legal yet suspicious. The message is one line of visible text.
struct Warning {
  std::size_t line = 0;
  std::string message;
};

/// One registration of a client.
struct Registration {
  std::string client;
  std::size_t line = 0;
};

/// A client's context to which the script added data.
struct Section {
  std::string client;
  std::string context;
  /// Where its first item stands.
  std::size_t line = 0;
};

/// One item of data. A script may hold a million of them, so the texts that repeat stand in the section.
struct Item {
  /// Position in Report::sections.
  std::size_t section = 0;
  std::string key;
  std::string value;
  /// Where the command that added it begins.
  std::size_t line = 0;
};

/// What the script asked to be transmitted.
struct Transmission {
  std::uint32_t clientId = 0;
  std::string registrationId;
  std::string xml;
  std::string html;
  std::string wdm;
  std::string intro;
  std::size_t line = 0;
};

/// All that a script said, once it has run to its end. Texts are the script's bytes.
struct Report {
  std::string vestraDir;
  std::vector<Registration> registrations;
  /// In order of their first item.
  std::vector<Section> sections;
  /// In order of the script.
  std::vector<Item> items;
  Transmission transmission;
};

/// The first value that client "project" reported for `key`, an empty text where there is none.
std::string projectValue(const Report& report, const std::string& key);

/// What stands between `<H3>` and `</H3><BR>`, which the library's intro consists of. Any other intro is a
/// title as a whole, tags included.
std::string titleOf(const Report& report);

/// The first registered client besides "project", "kelvo" or "tavlo"; empty without one.
std::string productOf(const Report& report);

}  // namespace vestra::design_tool

#endif
