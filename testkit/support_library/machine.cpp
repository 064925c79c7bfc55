#include "machine.h"

#include <sys/utsname.h>
#include <unistd.h>

#include <array>
#include <ctime>
#include <fstream>
#include <utility>
#include <vector>

namespace vestra::testkit {
namespace {

/// The text behind the first line that begins so, its separators and quotes left
/// out; "unknown" without such a line.
std::string factIn(const std::string& file, const std::string& beginning) {
  std::ifstream in(file);
  for (std::string line; std::getline(in, line);) {
    if (line.rfind(beginning, 0) == 0) {
      const std::size_t begin = line.find_first_not_of("\t :=\"", beginning.size());
      const std::size_t end = line.find_last_not_of(" \"");
      return begin > end ? "unknown" : line.substr(begin, end + 1 - begin);
    }
  }
  return "unknown";
}

// What has a meaning to the script interpreter, or separates the fields here.
std::string withoutSpecialCharacters(std::string text) {
  for (char& letter : text) {
    if (std::string("#\"\\$[]{}").find(letter) != std::string::npos) {
      letter = ' ';
    }
  }
  return text;
}

std::string memory() {
  const auto bytes = static_cast<unsigned long long>(sysconf(_SC_PHYS_PAGES)) *
                     static_cast<unsigned long long>(sysconf(_SC_PAGESIZE));
  return std::to_string((bytes + (1ULL << 29)) >> 30) + " GB";
}

std::string today() {
  const std::time_t now = std::time(nullptr);
  std::tm utc{};
  gmtime_r(&now, &utc);
  std::array<char, 32> text{};
  std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%SZ", &utc);
  return text.data();
}

}  // namespace

std::string describeMachine() {
  utsname system{};
  uname(&system);
  const std::vector<std::pair<std::string, std::string>> pairs = {
      {"os_name", system.sysname},
      {"os_release", factIn("/etc/os-release", "PRETTY_NAME")},
      {"cpu_name", factIn("/proc/cpuinfo", "model name")},
      {"cpu_speed", factIn("/proc/cpuinfo", "cpu MHz") + " MHz"},
      {"total_processors", std::to_string(sysconf(_SC_NPROCESSORS_ONLN))},
      {"system_ram", memory()},
      {"date_generated", today()},
      {"product_version", "2018.2"},
      {"build_version", "stand-in"},
      {"os_platform", system.machine},
      {"registration_id", "stand-in-registration"},
      {"beta", "FALSE"},
      {"route_design", "FALSE"}};
  std::string text;
  for (const auto& [key, value] : pairs) {
    text += (text.empty() ? "" : "#") + key + "#" + withoutSpecialCharacters(value);
  }
  return text;
}

}  // namespace vestra::testkit
