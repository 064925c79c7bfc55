#ifndef VESTRA_DATA_CONTEXTS_H
#define VESTRA_DATA_CONTEXTS_H

#include <array>
#include <cstddef>
#include <string_view>

namespace Oza {

/// One section of a report.
struct ContextProfile {
  /// Its path. A backslash is written twice: the script and the rules file read two
  /// as one.
  const char* path;
  /// The client that the section belongs to.
  const char* client;
  /// Whether the HTML report shows it in the style of the user's environment.
  bool userEnvStyle;
};

constexpr std::size_t CONTEXT_COUNT = 6;

/// The sections of every report, in the order of Vestra::SectionType.
inline constexpr std::array<ContextProfile, CONTEXT_COUNT> CONTEXTS{{
    {"software_version_and_target_device", "project", true},
    {"user_environment", "project", true},
    {"kelvo\\\\command_line_options", "kelvo", false},
    {"kelvo\\\\usage", "kelvo", false},
    {"tavlo\\\\command_line_options", "tavlo", false},
    {"tavlo\\\\usage", "tavlo", false},
}};

/// Whether the two contexts of each client are adjacent, the first at an even position,
/// where the script registers the client.
constexpr bool clientsHaveAdjacentContexts() {
  for (std::size_t i = 0; i < CONTEXT_COUNT; i += 2) {
    if (std::string_view(CONTEXTS[i].client) != CONTEXTS[i + 1].client) {
      return false;
    }
  }
  return true;
}
static_assert(CONTEXT_COUNT % 2 == 0 && clientsHaveAdjacentContexts());

/// The name of a context's style in a rules file.
constexpr const char* htmlFormat(bool userEnvStyle) {
  return userEnvStyle ? "UserEnvStyle" : "FennoxStatsStyle";
}

}  // namespace Oza

#endif
