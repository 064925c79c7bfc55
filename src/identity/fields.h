#ifndef VESTRA_IDENTITY_FIELDS_H
#define VESTRA_IDENTITY_FIELDS_H

#include <string>
#include <vector>

namespace Oza {

/// Splits a text: one field more than there are separators, empty ones included.
std::vector<std::string> fieldsOf(const std::string& text, char separator);

}  // namespace Oza

#endif
