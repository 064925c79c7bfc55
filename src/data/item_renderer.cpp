#include "data/item_renderer.h"

#include <typeinfo>

namespace Oza {
namespace {

/// The child as an item of this context; null when it is anything else.
VestraAddData* itemOf(const VestraParentData& context, VestraDataInterface* child) {
  if (child == nullptr || typeid(*child) != typeid(VestraAddData)) {
    return nullptr;
  }
  auto* item = static_cast<VestraAddData*>(child);
  return NodeAccess::parent(*item) == &context ? item : nullptr;
}

}  // namespace

// The client and the key stand bare, the value and the context between quotes.
ItemRenderer ItemRenderer::forScript(const std::string& client, const std::string& formattedContext) {
  ItemRenderer lines(Form::SCRIPT);
  lines.beforeKey.append(TYPE_ADD_DATA).append(SPACE);
  lines.beforeKey.append(PARAM_CLIENT).append(SPACE).append(client).append(SPACE);
  lines.beforeKey.append(PARAM_KEY).append(SPACE);
  lines.betweenKeyAndValue.append(SPACE).append(PARAM_VALUE).append(SPACE).append(1, '"');
  lines.afterValue.append(1, '"').append(SPACE).append(PARAM_CONTEXT).append(SPACE);
  lines.afterValue.append(1, '"').append(formattedContext).append(1, '"').append(NEW_LINE);
  return lines;
}

ItemRenderer ItemRenderer::forChecksum(const std::string& client, const std::string& crcContext) {
  ItemRenderer segments(Form::CHECKSUM);
  segments.afterValue = client + crcContext;
  return segments;
}

std::string ItemRenderer::render(VestraAddData& item) const {
  std::string text;
  text.reserve(sizeOf(item));
  append(item, text);
  return text;
}

std::string ItemRenderer::renderChildren(VestraParentData& context) const {
  std::string text;
  text.reserve(sizeOfItemsIn(context));
  for (VestraDataInterface* child : NodeAccess::children(context)) {
    if (VestraAddData* item = itemOf(context, child)) {
      append(*item, text);
    } else if (child != nullptr) {
      text += renderForeign(*child);
    }
  }
  return text;
}

std::size_t ItemRenderer::sizeOf(VestraAddData& item) const {
  return beforeKey.size() + NodeAccess::key(item).size() + betweenKeyAndValue.size() +
         NodeAccess::value(item).size() + afterValue.size();
}

std::size_t ItemRenderer::sizeOfItemsIn(VestraParentData& context) const {
  std::size_t size = 0;
  for (VestraDataInterface* child : NodeAccess::children(context)) {
    if (VestraAddData* item = itemOf(context, child)) {
      size += sizeOf(*item);
    }
  }
  return size;
}

void ItemRenderer::append(VestraAddData& item, std::string& text) const {
  text.append(beforeKey).append(NodeAccess::key(item)).append(betweenKeyAndValue);
  text.append(NodeAccess::value(item)).append(afterValue);
}

std::string ItemRenderer::renderForeign(VestraDataInterface& node) const {
  return form == Form::SCRIPT ? node.toTclString() : node.toCRCSegment();
}

}  // namespace Oza
