#ifndef VESTRA_READING_VISIBLE_TEXT_H
#define VESTRA_READING_VISIBLE_TEXT_H

#include <cstddef>
#include <string>
#include <string_view>

namespace vestra::reading {

/// Whether an XML 1.0 document can hold all of `bytes` as text and give them back: UTF-8 without the control
/// characters that XML excludes, and without carriage returns, which it changes.
bool isXmlText(std::string_view bytes);

/// Whether a reader sees the character as it is: no control character, line feed and tab excepted, nothing
/// without a width, and nothing that turns the direction of what follows.
bool isVisible(char32_t codePoint);

/// Whether a text is not empty and yet shows nothing: blanks of any kind, tabs and line feeds.
bool isBlank(std::string_view bytes);

/// Each byte as people write it, `\x20\x20`.
std::string namedBytes(std::string_view bytes);

/// Any bytes as HTML content: markup characters escaped, and what is not visible as `\xNN` in an element of
/// class "byte", so that it cannot be taken for the same characters spelled out.
std::string escapedForHtml(std::string_view bytes);

/// Each byte as `\xNN` in an element of class "byte".
std::string namedForHtml(std::string_view bytes);

/// The bytes with all that isXmlText refuses written as `\xNN`, and each backslash doubled so that it can be
/// undone.
std::string escapedForXml(std::string_view bytes);

/// The bytes for one line of a terminal: whatever is not visible, line feeds and tabs included, written as
/// `\xNN`. What the terminal would obey is shown instead.
std::string forTerminal(std::string_view bytes);

/// forTerminal of `bytes`, cut to about `limit` bytes, in double quotes.
std::string inQuotes(std::string_view bytes, std::size_t limit = 60);

}  // namespace vestra::reading

#endif
