// Adds items in a process that has done nothing else, and writes how many nanoseconds
// that took:
//
//     add_items SIDE FIRST KEY_LENGTH VALUE_LENGTH COUNT
//
// SIDE is the destination of the items: `library`, or `vector`, the least that an owner of two
// strings and a number must do. FIRST says whether the time includes the process's first item,
// with which the library reads the user's settings: `with-first` or `after-first`.

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include <vestra/vestra.h>

#include "numbered_text.h"

namespace {

using vestra_bench::NumberedText;

struct Item {
  Item(const char* itemKey, const char* itemValue, std::uint32_t itemSection)
      : key(itemKey), value(itemValue), section(itemSection) {}

  std::string key;
  std::string value;
  std::uint32_t section;
};

struct Library {
  static void add(const char* key, const char* value) {
    Oza::Vestra::add(key, value, Oza::Vestra::KELVO_USAGE);
  }
};

struct Vector {
  static std::vector<Item>& items() {
    static auto* all = new std::vector<Item>;
    return *all;
  }
  static void add(const char* key, const char* value) {
    items().emplace_back(key, value, Oza::Vestra::KELVO_USAGE);
  }
};

template <typename Side>
double nanosecondsToAdd(NumberedText key, NumberedText value, std::size_t count, bool withFirst) {
  if (!withFirst) {
    Side::add(key.next(), value.next());
  }
  const auto begin = std::chrono::steady_clock::now();
  for (std::size_t i = 0; i < count; ++i) {
    Side::add(key.next(), value.next());
  }
  const std::chrono::duration<double, std::nano> taken = std::chrono::steady_clock::now() - begin;
  return taken.count();
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 6) {
    return EXIT_FAILURE;
  }
  const bool isLibrary = std::string(argv[1]) == "library";
  const bool withFirst = std::string(argv[2]) == "with-first";
  const NumberedText key('k', std::strtoul(argv[3], nullptr, 10));
  const NumberedText value('v', std::strtoul(argv[4], nullptr, 10));
  const std::size_t count = std::strtoul(argv[5], nullptr, 10);
  const double taken = isLibrary ? nanosecondsToAdd<Library>(key, value, count, withFirst)
                                 : nanosecondsToAdd<Vector>(key, value, count, withFirst);
  std::printf("%.0f\n", taken);
  std::fflush(stdout);
  std::_Exit(EXIT_SUCCESS);
}
