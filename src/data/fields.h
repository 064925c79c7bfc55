#ifndef VESTRA_DATA_FIELDS_H
#define VESTRA_DATA_FIELDS_H

#include <string>
#include <vector>

namespace Oza {

/// The fields of a text: what stands between the separators, empty ones included. A
/// text without a separator is one field.
std::vector<std::string> fieldsOf(const std::string& text, char separator);

}  // namespace Oza

#endif
