#include "entry_points.h"

namespace vestra_test {

EntryPoints entryPoints(const char* const*) { return {&Oza::Vestra::add, &Oza::Vestra::send}; }

}  // namespace vestra_test
