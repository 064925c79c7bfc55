#ifndef VESTRA_INSPECT_LOADER_LD_SO_CACHE_H
#define VESTRA_INSPECT_LOADER_LD_SO_CACHE_H

#include <optional>
#include <string>
#include <unordered_map>

namespace vestra::inspect {

/// The loader's cache, for 64-bit libraries of this machine. One that is missing or damaged is empty.
class LdSoCache {
 public:
  explicit LdSoCache(const std::string& path = "/etc/ld.so.cache");

  /// The path of the library by that name; of several, the one that this processor gets.
  std::optional<std::string> find(const std::string& library) const;

 private:
  struct Entry {
    std::string path;
    int level;
  };
  std::unordered_map<std::string, Entry> entries;
};

/// The processor's level, 1 to 4, by which libraries lie in glibc-hwcaps/x86-64-vN.
int processorLevel();

}  // namespace vestra::inspect

#endif
