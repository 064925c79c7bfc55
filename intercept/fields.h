#ifndef VESTRA_INTERCEPT_FIELDS_H
#define VESTRA_INTERCEPT_FIELDS_H

#include <string>
#include <string_view>
#include <vector>

namespace vestra::intercept {

/// Texts of any bytes, each behind its length, so that they can be told apart again.
std::string joinedFields(const std::vector<std::string_view>& fields);

/// Undoes joinedFields. A field that is cut off, as by a kill, is left out.
std::vector<std::string> fieldsIn(std::string_view bytes);

}  // namespace vestra::intercept

#endif
