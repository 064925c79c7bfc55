#ifndef VESTRA_READING_UTF8_H
#define VESTRA_READING_UTF8_H

#include <cstddef>
#include <string_view>

#include <boost/locale/utf.hpp>

namespace vestra::reading {

/// One character at the start of a byte string, as UTF-8 reads it.
struct Utf8Character {
  /// How many bytes it takes; 0 where the bytes are no UTF-8 (or there are none).
  std::size_t length = 0;
  char32_t codePoint = 0;
};

/// Decodes the first character of `bytes`. Strict: overlong forms, surrogates and values above U+10FFFF are
/// refused.
inline Utf8Character firstCharacter(std::string_view bytes) {
  const char* end = bytes.data();
  const auto codePoint = boost::locale::utf::utf_traits<char>::decode(end, bytes.data() + bytes.size());
  return boost::locale::utf::is_valid_codepoint(codePoint)
             ? Utf8Character{static_cast<std::size_t>(end - bytes.data()), char32_t{codePoint}}
             : Utf8Character{};
}

/// Whether the whole of `bytes` is UTF-8 and `isAllowed` holds for each code point. The empty string is.
template <typename IsAllowed>
bool isUtf8Of(std::string_view bytes, IsAllowed isAllowed) {
  while (!bytes.empty()) {
    const Utf8Character character = firstCharacter(bytes);
    if (character.length == 0 || !isAllowed(character.codePoint)) {
      return false;
    }
    bytes.remove_prefix(character.length);
  }
  return true;
}

/// Whether the whole of `bytes` is UTF-8. The empty string is.
inline bool isUtf8(std::string_view bytes) {
  return isUtf8Of(bytes, [](char32_t) { return true; });
}

}  // namespace vestra::reading

#endif
