#ifndef VESTRA_HANDLER_PROJECT_FACTS_H
#define VESTRA_HANDLER_PROJECT_FACTS_H

#include <string>

#include <vestra/vestra_data.h>

namespace Oza {

/// Leaves the context with the fifteen facts of a project in their fixed order: keys
/// are lower-cased by the global locale, the first item with a key is kept, missing
/// ones get "not_applicable", others are freed. Running out of memory loses no item.
///
/// @param context  Holds only items.
void orderProjectFacts(VestraParentData& context);

/// The value of the first item whose key is "project_id" in any letter case; empty
/// without one. The keys that were looked at are lower-cased in place.
std::string hostProjectId(VestraParentData& context);

}  // namespace Oza

#endif
