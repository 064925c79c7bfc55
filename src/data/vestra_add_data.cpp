#include <vestra/vestra_data.h>

#include <utility>

#include "data/item_renderer.h"

namespace Oza {

VestraAddData::VestraAddData(std::string itemKey, std::string itemValue, VestraParentData* itemParent)
    : key(std::move(itemKey)), value(std::move(itemValue)), parent(itemParent) {}

VestraAddData::~VestraAddData() = default;

std::string VestraAddData::toTclString() {
  return ItemRenderer::forScript(getClient(), parent->getFormattedContext()).render(*this);
}

std::string VestraAddData::toCRCSegment() {
  return ItemRenderer::forChecksum(getClient(), parent->getCRCContext()).render(*this);
}

std::string VestraAddData::getClient() { return parent->getClient(); }

}  // namespace Oza
