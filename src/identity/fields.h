#ifndef VESTRA_IDENTITY_FIELDS_H
#define VESTRA_IDENTITY_FIELDS_H

#include <string>
#include <vector>

namespace Oza {

/// What stands between the separators: one field more than there are separators, the empty
/// ones included.
///
/// @param text       What is split.
/// @param separator  A text of one character.
std::vector<std::string> fieldsOf(const std::string& text, const char* separator);

}  // namespace Oza

#endif
