#ifndef VESTRA_DESIGN_TOOL_FILES_NEW_FILE_H
#define VESTRA_DESIGN_TOOL_FILES_NEW_FILE_H

#include <string>
#include <string_view>

namespace vestra::design_tool {

/// Makes a file and writes it. A file or link that has the name already is neither followed nor touched.
///
/// @param directory an open directory
/// @param name      the file's name in it
/// @return          0, or the error's number; then there is no such file
int writeNewFile(int directory, const std::string& name, std::string_view content);

/// A hidden name that nobody can guess, so that nobody can be there first.
std::string unpredictableName();

}  // namespace vestra::design_tool

#endif
