#pragma once

#include <string_view>

namespace vestra::design_tool {

/// The style sheet that every HTML report carries.
extern const std::string_view kPageStyle;

}  // namespace vestra::design_tool
