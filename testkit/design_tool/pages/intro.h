#ifndef VESTRA_DESIGN_TOOL_INTRO_H
#define VESTRA_DESIGN_TOOL_INTRO_H

#include <string>

namespace vestra::design_tool {

/// The intro text as the head of the page. It is HTML by contract, and of HTML it may hold `<H3>`, `</H3>`
/// and `<BR>`, in either case: the first two enclose the page's heading, the third breaks the line.
/// Everything else, other elements included, is shown as the characters it is made of. What is left open is
/// closed.
std::string renderIntro(const std::string& intro);

/// The intro's words without its elements, for the page's title; "Usage Report" when there are none.
std::string titleOf(const std::string& intro);

}  // namespace vestra::design_tool

#endif
