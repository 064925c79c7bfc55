#include "data/item_renderer.h"

#include <typeinfo>

namespace Oza {

// The client and the key stand bare, the value and the context between quotes.
ItemRenderer ItemRenderer::forScript(const std::string& client, const std::string& formattedContext) {
  ItemRenderer lines;
  lines.beforeKey.append(TYPE_ADD_DATA).append(SPACE);
  lines.beforeKey.append(PARAM_CLIENT).append(SPACE).append(client).append(SPACE);
  lines.beforeKey.append(PARAM_KEY).append(SPACE);
  lines.betweenKeyAndValue.append(SPACE).append(PARAM_VALUE).append(SPACE).append(1, '"');
  lines.afterValue.append(1, '"').append(SPACE).append(PARAM_CONTEXT).append(SPACE);
  lines.afterValue.append(1, '"').append(formattedContext).append(1, '"').append(NEW_LINE);
  return lines;
}

ItemRenderer ItemRenderer::forChecksum(const std::string& client, const std::string& crcContext) {
  ItemRenderer segments;
  segments.afterValue = client + crcContext;
  return segments;
}

std::string ItemRenderer::render(const VestraAddData& item) const {
  std::string text;
  text.reserve(sizeOf(item));
  append(item, text);
  return text;
}

std::string ItemRenderer::renderChildren(const VestraParentData& context,
                                         std::string (VestraDataInterface::*operation)()) const {
  std::string text;
  text.reserve(sizeOfItemsIn(context));
  for (VestraDataInterface* child : context.children) {
    if (const VestraAddData* item = itemOf(context, child)) {
      append(*item, text);
    } else if (child != nullptr) {
      text += (child->*operation)();
    }
  }
  return text;
}

const VestraAddData* ItemRenderer::itemOf(const VestraParentData& context, VestraDataInterface* child) {
  if (child == nullptr || typeid(*child) != typeid(VestraAddData)) {
    return nullptr;
  }
  const auto* item = static_cast<VestraAddData*>(child);
  return item->parent == &context ? item : nullptr;
}

std::size_t ItemRenderer::sizeOf(const VestraAddData& item) const {
  return beforeKey.size() + item.key.size() + betweenKeyAndValue.size() + item.value.size() +
         afterValue.size();
}

std::size_t ItemRenderer::sizeOfItemsIn(const VestraParentData& context) const {
  std::size_t size = 0;
  for (VestraDataInterface* child : context.children) {
    if (const VestraAddData* item = itemOf(context, child)) {
      size += sizeOf(*item);
    }
  }
  return size;
}

void ItemRenderer::append(const VestraAddData& item, std::string& text) const {
  text.append(beforeKey).append(item.key).append(betweenKeyAndValue).append(item.value).append(afterValue);
}

}  // namespace Oza
