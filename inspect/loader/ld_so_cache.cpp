#include "loader/ld_so_cache.h"

#include <cstdint>

#include "loader/mapped_file.h"

namespace vestra::inspect {
namespace {

constexpr const char* MAGIC = "glibc-ld.so.cache1.1";
constexpr std::size_t HEADER_LENGTH = 48;
// A cache for older loaders too has a list for those in front.
constexpr const char* OLD_MAGIC = "ld.so-1.7.0";
constexpr std::size_t OLD_HEADER_LENGTH = 16;
constexpr std::size_t OLD_ENTRY_LENGTH = 12;
// For ELF libraries of libc 6 on x86-64.
constexpr std::uint32_t WANTED_FLAGS = 0x0303;

struct CacheEntry {
  std::uint32_t flags;
  std::uint32_t key;
  std::uint32_t value;
  std::uint32_t osVersion;
  std::uint64_t hardware;
};

/// Where the list begins by which this loader goes; what it refers to is counted from there.
std::size_t beginOf(const MappedFile& file) {
  if (file.bytes().rfind(OLD_MAGIC, 0) != 0) {
    return 0;
  }
  const std::size_t count = file.at<std::uint32_t>(OLD_HEADER_LENGTH - sizeof(std::uint32_t)).value_or(0);
  return (OLD_HEADER_LENGTH + count * OLD_ENTRY_LENGTH + 7) / 8 * 8;
}

/// The level that a path asks for; 1 for any other.
int levelOf(const std::string& path) {
  const std::string mark = "/glibc-hwcaps/x86-64-v";
  const std::size_t found = path.find(mark);
  return found == std::string::npos ? 1 : path[found + mark.size()] - '0';
}

}  // namespace

LdSoCache::LdSoCache(const std::string& path) {
  const MappedFile file(path);
  const std::size_t begin = beginOf(file);
  if (file.textAt(begin).rfind(MAGIC, 0) != 0) {
    return;
  }
  const std::uint32_t count = file.at<std::uint32_t>(begin + 20).value_or(0);
  for (std::uint32_t i = 0; i < count; ++i) {
    const auto entry = file.at<CacheEntry>(begin + HEADER_LENGTH + std::size_t{i} * sizeof(CacheEntry));
    if (!entry) {
      return;
    }
    const std::string library = file.textAt(begin + entry->value);
    const int level = levelOf(library);
    if (entry->flags != WANTED_FLAGS || level > processorLevel()) {
      continue;
    }
    Entry& known = entries.emplace(file.textAt(begin + entry->key), Entry{library, 0}).first->second;
    if (level > known.level) {
      known = {library, level};
    }
  }
}

std::optional<std::string> LdSoCache::find(const std::string& library) const {
  const auto found = entries.find(library);
  return found == entries.end() ? std::nullopt : std::optional(found->second.path);
}

int processorLevel() {
  __builtin_cpu_init();
  if (__builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw") &&
      __builtin_cpu_supports("avx512cd") && __builtin_cpu_supports("avx512dq") &&
      __builtin_cpu_supports("avx512vl")) {
    return 4;
  }
  if (__builtin_cpu_supports("avx2") && __builtin_cpu_supports("bmi2") && __builtin_cpu_supports("fma")) {
    return 3;
  }
  return __builtin_cpu_supports("sse4.2") && __builtin_cpu_supports("popcnt") ? 2 : 1;
}

}  // namespace vestra::inspect
