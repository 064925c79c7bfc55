#ifndef VESTRA_DATA_ITEM_RENDERER_H
#define VESTRA_DATA_ITEM_RENDERER_H

#include <cstddef>
#include <string>

#include <vestra/vestra_data.h>

namespace Oza {

class Crc32;

/// What stands around the key and the value in each of a context's items, which is put
/// together once for all of them.
struct ItemFrame {
  std::string beforeKey;
  std::string betweenKeyAndValue;
  std::string afterValue;

  std::size_t size() const { return beforeKey.size() + betweenKeyAndValue.size() + afterValue.size(); }
};

/// Of script lines. Reads the exported text constants.
///
/// @param node  Is asked for the client: an item of the context, or the context.
ItemFrame lineFrame(VestraDataInterface& node, VestraParentData& context);

/// Of checksum segments.
ItemFrame segmentFrame(VestraDataInterface& node, VestraParentData& context);

/// One item's text.
std::string renderItem(VestraAddData& item, const ItemFrame& frame);

// The texts of a context's children, in order, with the virtual calls that nodes of a
// host's own class expect: each renders itself once, and what it changes meanwhile is
// seen by those after it.
std::string renderLines(VestraParentData& context);
std::string renderSegments(VestraParentData& context);

/// The size of the lines of a context's items; 0 for a context of a host's class. Of other
/// nodes, nothing is known before they are asked.
std::size_t sizeOfPlainLines(VestraParentData& context);

/// Appends a context's lines and takes the checksum of its segments, in one pass.
///
/// @return False where the context or a child has virtual operations of a host's, which must
///         be called one after the other. Nothing has been appended then.
bool appendIfPlain(VestraParentData& context, std::string& lines, Crc32& checksum);

}  // namespace Oza

#endif
