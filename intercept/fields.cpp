#include "intercept/fields.h"

#include <cstdint>
#include <cstring>

namespace vestra::intercept {
namespace {

using Length = std::uint64_t;

}  // namespace

std::string joinedFields(const std::vector<std::string_view>& fields) {
  std::string bytes;
  for (const std::string_view field : fields) {
    const Length length = field.size();
    bytes.append(reinterpret_cast<const char*>(&length), sizeof length).append(field);
  }
  return bytes;
}

std::vector<std::string> fieldsIn(std::string_view bytes) {
  std::vector<std::string> fields;
  while (bytes.size() >= sizeof(Length)) {
    Length length = 0;
    std::memcpy(&length, bytes.data(), sizeof length);
    bytes.remove_prefix(sizeof length);
    if (bytes.size() < length) {
      break;
    }
    fields.emplace_back(bytes.substr(0, length));
    bytes.remove_prefix(length);
  }
  return fields;
}

}  // namespace vestra::intercept
