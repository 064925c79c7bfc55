// The settings text: whatever it holds, each pair that is read can be written and read
// again.

#include <cstdint>
#include <map>
#include <string>

#include "expect.h"
#include "identity/vestra_setting.h"

using vestra_fuzz::expect;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::map<std::string, std::string> properties;
  Oza::readSettings(std::string(reinterpret_cast<const char*>(data), size), properties);

  std::string written;
  for (const auto& [key, value] : properties) {
    expect((key + value).find_first_of("=\n") == std::string::npos,
           "a pair is of one line with one equals sign");
    written += key + "=" + value + "\n";
  }
  std::map<std::string, std::string> readAgain;
  Oza::readSettings(written, readAgain);
  expect(readAgain == properties, "what was read can be written and read again");
  return 0;
}
