#include "data/item_renderer.h"

#include <cstring>

#include "data/crc32.h"

namespace Oza {
namespace {

/// Tells the library's own nodes from those of a host's derived classes by their vtable
/// pointers. typeid would crash on classes of a host that is compiled with -fno-rtti.
class PlainNodes {
 public:
  PlainNodes()
      : contextTable(tableOf(VestraParentData({}, {}, false))),
        itemTable(tableOf(VestraAddData({}, {}, nullptr))) {}

  bool contain(const VestraParentData& context) const { return tableOf(context) == contextTable; }

  /// The child as an item of this context; null when it is anything else.
  VestraAddData* itemOf(const VestraParentData& context, VestraDataInterface* child) const {
    if (child == nullptr || tableOf(*child) != itemTable) {
      return nullptr;
    }
    auto* item = static_cast<VestraAddData*>(child);
    return NodeAccess::parent(*item) == &context ? item : nullptr;
  }

 private:
  // The base class has no fields: the vtable pointer is all that it holds.
  static const void* tableOf(const VestraDataInterface& node) {
    static_assert(sizeof(VestraDataInterface) == sizeof(void*));
    const void* table = nullptr;
    std::memcpy(&table, static_cast<const void*>(&node), sizeof table);
    return table;
  }

  const void* contextTable;
  const void* itemTable;
};

std::size_t sizeOf(VestraAddData& item, const ItemFrame& frame) {
  return frame.size() + NodeAccess::key(item).size() + NodeAccess::value(item).size();
}

void append(VestraAddData& item, const ItemFrame& frame, std::string& text) {
  text.append(frame.beforeKey).append(NodeAccess::key(item)).append(frame.betweenKeyAndValue);
  text.append(NodeAccess::value(item)).append(frame.afterValue);
}

using MakeFrame = ItemFrame(VestraDataInterface& node, VestraParentData& context);
using Rendering = std::string (VestraDataInterface::*)();

std::string renderEach(const std::vector<VestraDataInterface*>& children, Rendering render) {
  std::string text;
  for (std::size_t i = 0; i < children.size(); ++i) {
    if (children[i] != nullptr) {
      text += (children[i]->*render)();
    }
  }
  return text;
}

std::size_t sizeOfPlainItems(const PlainNodes& plain, VestraParentData& context, const ItemFrame& frame) {
  std::size_t size = 0;
  for (VestraDataInterface* child : NodeAccess::children(context)) {
    if (VestraAddData* item = plain.itemOf(context, child)) {
      size += sizeOf(*item, frame);
    }
  }
  return size;
}

// By index: rendering a host's node may add children, which invalidates iterators.
std::string renderChildren(VestraParentData& context, MakeFrame makeFrame, Rendering render) {
  const std::vector<VestraDataInterface*>& children = NodeAccess::children(context);
  const PlainNodes plain;
  if (!plain.contain(context)) {
    return renderEach(children, render);
  }
  std::string text;
  for (std::size_t i = 0; i < children.size(); ++i) {
    const ItemFrame frame = makeFrame(context, context);
    if (i == 0) {
      text.reserve(sizeOfPlainItems(plain, context, frame));
    }
    for (VestraAddData* item = nullptr;
         i < children.size() && (item = plain.itemOf(context, children[i])) != nullptr; ++i) {
      append(*item, frame, text);
    }
    if (i < children.size() && children[i] != nullptr) {
      text += (children[i]->*render)();
    }
  }
  return text;
}

}  // namespace

// The client and the key are unquoted, the value and the context are quoted.
ItemFrame lineFrame(VestraDataInterface& node, VestraParentData& context) {
  ItemFrame line;
  line.beforeKey.append(TYPE_ADD_DATA).append(SPACE).append(PARAM_CLIENT).append(SPACE);
  line.beforeKey.append(node.getClient()).append(SPACE).append(PARAM_KEY).append(SPACE);
  line.betweenKeyAndValue.append(SPACE).append(PARAM_VALUE).append(SPACE).append(1, '"');
  line.afterValue.append(1, '"').append(SPACE).append(PARAM_CONTEXT).append(SPACE);
  line.afterValue.append(1, '"').append(context.getFormattedContext()).append(1, '"').append(NEW_LINE);
  return line;
}

ItemFrame segmentFrame(VestraDataInterface& node, VestraParentData& context) {
  ItemFrame segment;
  segment.afterValue = node.getClient();
  segment.afterValue += context.getCRCContext();
  return segment;
}

std::string renderItem(VestraAddData& item, const ItemFrame& frame) {
  std::string text;
  text.reserve(sizeOf(item, frame));
  append(item, frame, text);
  return text;
}

std::string renderLines(VestraParentData& context) {
  return renderChildren(context, lineFrame, &VestraDataInterface::toTclString);
}

std::string renderSegments(VestraParentData& context) {
  return renderChildren(context, segmentFrame, &VestraDataInterface::toCRCSegment);
}

std::size_t sizeOfPlainLines(VestraParentData& context) {
  const PlainNodes plain;
  return plain.contain(context) ? sizeOfPlainItems(plain, context, lineFrame(context, context)) : 0;
}

bool appendIfPlain(VestraParentData& context, std::string& lines, Crc32& checksum) {
  const PlainNodes plain;
  if (!plain.contain(context)) {
    return false;
  }
  const ItemFrame line = lineFrame(context, context);
  const ItemFrame segment = segmentFrame(context, context);
  const std::size_t sizeBefore = lines.size();
  const Crc32 checksumBefore = checksum;
  for (VestraDataInterface* child : NodeAccess::children(context)) {
    VestraAddData* item = plain.itemOf(context, child);
    if (item == nullptr) {
      lines.resize(sizeBefore);
      checksum = checksumBefore;
      return false;
    }
    append(*item, line, lines);
    checksum.append(NodeAccess::key(*item));
    checksum.append(NodeAccess::value(*item));
    checksum.append(segment.afterValue);
  }
  return true;
}

}  // namespace Oza
