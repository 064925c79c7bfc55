#ifndef VESTRA_HANDLER_PROJECT_FACTS_H
#define VESTRA_HANDLER_PROJECT_FACTS_H

#include <string>

#include <vestra/vestra_data.h>

namespace Oza {

/// Reduces the context to the fifteen facts of a project in their fixed order: keys are
/// lower-cased by the global locale, the first item with a key is kept, missing ones are
/// added with the value "not_applicable", others are freed. std::bad_alloc loses no item.
///
/// @param context  Holds only items.
void orderProjectFacts(VestraParentData& context);

/// Lower-cases the items' keys in place, up to the first that is "project_id", and returns
/// that item's value; empty without one.
std::string hostProjectId(VestraParentData& context);

}  // namespace Oza

#endif
