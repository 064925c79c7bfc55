// Adds items in a process that has done nothing else, and writes how many nanoseconds
// that took:
//
//     add_items SIDE FIRST KEY_LENGTH VALUE_LENGTH COUNT
//
// SIDE is the destination of the items: `library`; `vector`, the least that an owner of
// two strings and a number must do; or `vector-and-file`, which also reads the user's
// settings file, as the library must before its first item. FIRST says whether the time
// includes the process's first item, and that file: `with-first`, `after-first`, or
// `with-first-and-locale`, which uses a locale before, as every process that includes
// <iostream> does.

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <locale>
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
  static void prepare() {}
  static void add(const char* key, const char* value) {
    Oza::Vestra::add(key, value, Oza::Vestra::KELVO_USAGE);
  }
};

struct Vector {
  static std::vector<Item>& items() {
    static auto* all = new std::vector<Item>;
    return *all;
  }
  static void prepare() {}
  static void add(const char* key, const char* value) {
    items().emplace_back(key, value, Oza::Vestra::KELVO_USAGE);
  }
};

struct VectorAndFile : Vector {
  static void prepare() {
    const std::string settings = std::string(std::getenv("HOME")) + "/.Calvix/Common/2018.2/vestra";
    std::array<char, 8191> bytes{};
    const int file = open(settings.c_str(), O_RDONLY);
    while (read(file, bytes.data(), bytes.size()) > 0) {
    }
    close(file);
  }
};

template <typename Side>
double nanosecondsToAdd(NumberedText key, NumberedText value, std::size_t count, const std::string& first) {
  const bool withFirst = first != "after-first";
  if (first == "with-first-and-locale") {
    std::locale();
  }
  if (!withFirst) {
    Side::prepare();
    Side::add(key.next(), value.next());
  }
  const auto begin = std::chrono::steady_clock::now();
  if (withFirst) {
    Side::prepare();
  }
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
  const std::string side = argv[1];
  const std::string first = argv[2];
  const NumberedText key('k', std::strtoul(argv[3], nullptr, 10));
  const NumberedText value('v', std::strtoul(argv[4], nullptr, 10));
  const std::size_t count = std::strtoul(argv[5], nullptr, 10);
  double taken = 0;
  if (side == "library") {
    taken = nanosecondsToAdd<Library>(key, value, count, first);
  } else if (side == "vector") {
    taken = nanosecondsToAdd<Vector>(key, value, count, first);
  } else {
    taken = nanosecondsToAdd<VectorAndFile>(key, value, count, first);
  }
  std::printf("%.0f\n", taken);
  std::fflush(stdout);
  std::_Exit(EXIT_SUCCESS);
}
