#ifndef VESTRA_READING_HTML_TEXT_H
#define VESTRA_READING_HTML_TEXT_H

#include <string>
#include <string_view>

namespace vestra::reading {

/// Any bytes as HTML content: markup characters escaped, and what a reader could not see (control characters,
/// bytes that are no UTF-8) as `\xNN` in an element of class "byte", so that it cannot be taken for the same
/// characters spelled out.
std::string escapedForHtml(std::string_view bytes);

/// Each byte as `\xNN` in an element of class "byte".
std::string namedForHtml(std::string_view bytes);

}  // namespace vestra::reading

#endif
