#include <benchmark/benchmark.h>
#include <zlib.h>

#include <array>
#include <cstdint>
#include <string>
#include <utility>

#include "data/crc32.h"
#include "paired.h"
#include "rows.h"

namespace vestra_bench {
namespace {

// Eight bytes at a time.
constexpr double GOAL = 0.5;

constexpr std::pair<std::size_t, const char*> SIZES[] = {
    {1000, "1 KB"}, {1000000, "1 MB"}, {100000000, "100 MB"}};

/// The textbook algorithm: one table look-up for each byte, over a known length.
class Textbook {
 public:
  Textbook() {
    for (std::uint32_t i = 0; i < table.size(); ++i) {
      std::uint32_t entry = i;
      for (int bit = 0; bit < 8; ++bit) {
        entry = (entry & 1U) != 0 ? 0xEDB88320U ^ (entry >> 1) : entry >> 1;
      }
      table[i] = entry;
    }
  }

  std::uint32_t checksum(const std::string& text) const {
    std::uint32_t crc = 0xFFFFFFFFU;
    for (std::size_t i = 0; i < text.size(); ++i) {
      crc = table[(crc ^ static_cast<unsigned char>(text[i])) & 0xFFU] ^ (crc >> 8);
    }
    return crc ^ 0xFFFFFFFFU;
  }

 private:
  std::array<std::uint32_t, 256> table{};
};

std::uint32_t zlibChecksum(const std::string& text) {
  return static_cast<std::uint32_t>(
      ::crc32(0, reinterpret_cast<const Bytef*>(text.data()), static_cast<uInt>(text.size())));
}

std::string textOf(std::size_t size) {
  std::string text(size, ' ');
  for (std::size_t i = 0; i < size; ++i) {
    text[i] = static_cast<char>(' ' + i * 7919 % 90);
  }
  return text;
}

}  // namespace

void measureChecksum(const Take& take) {
  const Textbook textbook;
  for (const auto& [size, name] : SIZES) {
    const std::string text = textOf(size);
    const auto ours = [&] { benchmark::DoNotOptimize(Oza::crc32(text.c_str())); };
    take({"checksum of " + std::string(name), "the table loop of a textbook", GOAL,
          compareInTurn(ours, [&] { benchmark::DoNotOptimize(textbook.checksum(text)); })});
    take({"checksum of " + std::string(name),
          "zlib's, by several bytes at a time",
          {},
          compareInTurn(ours, [&] { benchmark::DoNotOptimize(zlibChecksum(text)); })});
  }
}

}  // namespace vestra_bench
