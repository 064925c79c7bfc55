// The rules block of any context, as libconfig reads it: one that holds neither quotes
// nor backslashes nor control characters is read as it stands.

#include <algorithm>
#include <cstdint>
#include <libconfig.h++>

#include <vestra/vestra_data.h>

#include "expect.h"

using vestra_fuzz::expect;

namespace {

bool isOrdinary(unsigned char letter) {
  return letter >= ' ' && letter < 0x7F && letter != '"' && letter != '\\';
}

void expectAllThree(const libconfig::Setting& block, const std::string& path) {
  for (const char* name : {"context", "xml_map", "html_map"}) {
    expect(path == static_cast<const char*>(block.lookup(name)), "libconfig reads the path as it stands");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  const std::size_t half = text.find('\n');
  Oza::VestraParentData context(text.substr(0, half), "client", size % 2 == 0);
  context.setVestraId(half == std::string::npos ? "" : text.substr(half + 1));
  const std::string block = context.getWdmString();
  const std::string path = context.getWdmContext();
  if (!std::all_of(path.begin(), path.end(), isOrdinary)) {
    return 0;
  }
  libconfig::Config config;
  config.readString("rules = (\n" + block + "\n);\n");
  expectAllThree(config.lookup("rules")[0], path);
  return 0;
}
