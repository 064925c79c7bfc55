#ifndef VESTRA_INSPECT_FACTS_HOST_CONTEXT_H
#define VESTRA_INSPECT_FACTS_HOST_CONTEXT_H

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include <vestra/vestra.h>

namespace vestra::inspect {

using Product = Oza::Vestra::ProductType;
using Environment = std::map<std::string, std::string>;

// The variables that change what is written and what stays.
inline constexpr char KEEP_VARIABLE[] = "CALVIX_VESTRA_DEBUG_EXT";
inline constexpr char INTERNAL_VARIABLE[] = "CALVIX_VESTRA_INTERNAL_TRANSMIT";

/// What a host starts with: environment, working directory and clock.
struct HostContext {
  Environment environment;
  std::string currentDirectory;
  /// Seconds since the epoch.
  std::int64_t now = 0;
  /// Path of the program; empty when none was named.
  std::string host;

  /// The variable's text; empty where it is unset.
  std::string variable(const std::string& name) const;
  /// Whether it is set to anything but the empty text.
  bool isSwitchedOn(const std::string& name) const;
  /// Where the user's settings lie.
  std::string settingsPath() const;
};

/// This process's own environment.
Environment ownEnvironment();

/// `NAME=value` entries, parted by line feeds or, where there are any, by NULs: the form
/// of `env` and of /proc/PID/environ.
Environment environmentIn(const std::string& text);

/// "KELVO", "KELVO_ALT", "TAVLO"
const char* nameOf(Product product);

/// The three products.
const std::vector<Product>& allProducts();

}  // namespace vestra::inspect

#endif
