#ifndef VESTRA_TESTKIT_SANDBOX_SCRIPT_ITEMS_H
#define VESTRA_TESTKIT_SANDBOX_SCRIPT_ITEMS_H

#include <string>
#include <vector>

#include <vestra/testkit/host_run.h>

namespace vestra::testkit {

/// The items of a report script as they were written: keys and values byte for
/// byte, before any interpreter has read them.
std::vector<Item> itemsWrittenIn(const std::string& script);

/// The script line of one item.
std::string scriptLineOf(const Item& item);

}  // namespace vestra::testkit

#endif
