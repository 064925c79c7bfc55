#ifndef VESTRA_TESTKIT_SANDBOX_RESULTS_SCRIPT_ITEMS_H
#define VESTRA_TESTKIT_SANDBOX_RESULTS_SCRIPT_ITEMS_H

#include <string>
#include <vector>

#include <vestra/testkit/host_run.h>

namespace vestra::testkit {

/// The items of a report script as they were written: keys and values byte for
/// byte, before any interpreter has read them.
///
/// @param added  what the host handed over, in order
std::vector<Item> itemsWrittenIn(const std::string& script, const std::vector<AddedItem>& added);

}  // namespace vestra::testkit

#endif
