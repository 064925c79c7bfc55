#ifndef VESTRA_DATA_ITEM_RENDERER_H
#define VESTRA_DATA_ITEM_RENDERER_H

#include <cstddef>
#include <string>

#include <vestra/vestra_data.h>

namespace Oza {

class Crc32;

/// The text around the key and the value of an item, composed once for all items of a
/// context.
struct ItemFrame {
  std::string beforeKey;
  std::string betweenKeyAndValue;
  std::string afterValue;

  std::size_t size() const { return beforeKey.size() + betweenKeyAndValue.size() + afterValue.size(); }
};

/// The frame of script lines. Reads the exported text constants.
///
/// @param node  The one whose getClient is called: an item of the context, or the context.
ItemFrame lineFrame(VestraDataInterface& node, VestraParentData& context);

/// The frame of checksum segments.
ItemFrame segmentFrame(VestraDataInterface& node, VestraParentData& context);

/// One item's text.
std::string renderItem(VestraAddData& item, const ItemFrame& frame);

// The texts of a context's children, in order. The virtual function of a node of a host's
// class is called once, in its turn: its changes to the context are seen by later nodes.
std::string renderLines(VestraParentData& context);
std::string renderSegments(VestraParentData& context);

/// The size of the lines of a context's items; 0 for a context of a host's class. Nodes of
/// a host's class are not counted.
std::size_t sizeOfPlainLines(VestraParentData& context);

/// Appends a context's lines and takes the checksum of its segments, in one pass.
///
/// @return False, with nothing appended, when the context or a child is of a host's class:
///         all lines must be rendered before the first segment then.
bool appendIfPlain(VestraParentData& context, std::string& lines, Crc32& checksum);

}  // namespace Oza

#endif
