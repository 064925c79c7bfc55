// The least that a report of many items must do: appends its two texts to strings with
// room for them, takes the checksum and writes the one file:
//
//     append_items COUNT FILE
//
// Writes the nanoseconds of processor time that it took.

#include <fcntl.h>
#include <unistd.h>
#include <zlib.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "numbered_text.h"
#include "processor_time.h"

namespace {

struct Item {
  std::string key;
  std::string value;
};

std::vector<Item> makeItems(std::size_t count) {
  vestra_bench::NumberedText key('k', 16);
  vestra_bench::NumberedText value('v', 24);
  std::vector<Item> items;
  items.reserve(count);
  for (std::size_t i = 0; i < count; ++i) {
    items.push_back({key.next(), value.next()});
  }
  return items;
}

void writeWhole(const char* path, const std::string& text) {
  const int file = open(path, O_WRONLY | O_CREAT | O_TRUNC, 0666);
  if (write(file, text.data(), text.size()) != static_cast<ssize_t>(text.size())) {
    std::exit(EXIT_FAILURE);
  }
  close(file);
}

void report(const std::vector<Item>& items, const char* path) {
  const std::string beforeKey = "vestra_add_data -client kelvo -key ";
  const std::string betweenKeyAndValue = " -value \"";
  const std::string afterValue = "\" -context \"kelvo\\\\usage\"\n";
  const std::string segmentEnd = "kelvokelvo\\usage";
  std::string script;
  std::string checksumText;
  script.reserve(items.size() * (beforeKey.size() + 16 + betweenKeyAndValue.size() + 24 + afterValue.size()) +
                 64);
  checksumText.reserve(items.size() * (16 + 24 + segmentEnd.size()));
  for (const Item& item : items) {
    script.append(beforeKey)
        .append(item.key)
        .append(betweenKeyAndValue)
        .append(item.value)
        .append(afterValue);
    checksumText.append(item.key).append(item.value).append(segmentEnd);
  }
  const auto* bytes = reinterpret_cast<const Bytef*>(checksumText.data());
  script += std::to_string(crc32(0, bytes, static_cast<uInt>(checksumText.size()))) + "\n";
  writeWhole(path, script);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    return EXIT_FAILURE;
  }
  const std::vector<Item> items = makeItems(std::strtoul(argv[1], nullptr, 10));
  const double begin = vestra_bench::processorNanoseconds();
  report(items, argv[2]);
  std::printf("%.0f\n", vestra_bench::processorNanoseconds() - begin);
  return EXIT_SUCCESS;
}
