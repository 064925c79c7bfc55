#ifndef VESTRA_DESIGN_TOOL_HTML_TEXT_H
#define VESTRA_DESIGN_TOOL_HTML_TEXT_H

#include <string>
#include <string_view>

namespace vestra::design_tool {

/// Any bytes as HTML content: markup characters escaped, and what a reader couldn't see (control characters,
/// bytes that are no UTF-8) as `\xNN` in an element of class "byte", so that it can't be taken for the same
/// characters spelled out.
std::string escapedForHtml(std::string_view bytes);

}  // namespace vestra::design_tool

#endif
