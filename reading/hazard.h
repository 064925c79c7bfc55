#ifndef VESTRA_READING_HAZARD_H
#define VESTRA_READING_HAZARD_H

#include <optional>
#include <string>

#include "reading/written_items.h"

namespace vestra::reading {

/// Why the interpreter does not read the item as it was written, in words; nothing when it does. Judges the
/// item's texts as the host gave them, whatever became of them in a script.
std::optional<std::string> hazardOf(const WrittenItem& item);

}  // namespace vestra::reading

#endif
