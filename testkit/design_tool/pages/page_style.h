#ifndef VESTRA_DESIGN_TOOL_PAGE_STYLE_H
#define VESTRA_DESIGN_TOOL_PAGE_STYLE_H

#include <string_view>

namespace vestra::design_tool {

/// The style sheet that every HTML report carries: `page.css`, as the build found it.
extern const std::string_view PAGE_STYLE;

}  // namespace vestra::design_tool

#endif
