#ifndef VESTRA_READING_WRITTEN_ITEMS_H
#define VESTRA_READING_WRITTEN_ITEMS_H

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace vestra::reading {

/// An item of a report script as the library wrote it: byte for byte, before any interpreter has read it.
struct WrittenItem {
  /// "project", "kelvo" or "tavlo".
  std::string client;
  /// The path as the interpreter reads it: one backslash in "kelvo\usage".
  std::string context;
  std::string key;
  std::string value;
  /// Where its command begins, counted from 1.
  std::size_t line = 0;
};

/// The items of a report script, in order. An item ends where one of its client's contexts is named and
/// another command of a report, or nothing, follows: so a value that imitates such an end is read as several
/// items. A command without such an end is left out. Takes time in proportion to the script.
std::vector<WrittenItem> itemsWrittenIn(std::string_view script);

/// Is given an item, and what stands between it and the item before.
using UseItem = std::function<void(WrittenItem item, std::string_view before)>;

/// The same one by one. @return Where the text behind the last item begins.
std::size_t forEachItemWrittenIn(std::string_view script, const UseItem& use);

/// All items where it is known what the host handed over: such an item ends where its texts end, whatever
/// they imitate.
///
/// @param handed in the order of the calls
std::vector<WrittenItem> itemsWrittenIn(std::string_view script, const std::vector<WrittenItem>& handed);

/// The item's command as the library writes it, line feed included.
std::string scriptLineOf(const WrittenItem& item);

}  // namespace vestra::reading

#endif
