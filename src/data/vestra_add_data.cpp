#include <vestra/vestra_data.h>

#include <utility>

#include "data/item_renderer.h"

namespace Oza {

VestraAddData::VestraAddData(std::string itemKey, std::string itemValue, VestraParentData* itemParent)
    : key(std::move(itemKey)), value(std::move(itemValue)), parent(itemParent) {}

VestraAddData::~VestraAddData() = default;

std::string VestraAddData::toTclString() { return renderItem(*this, lineFrame(*this, *parent)); }

std::string VestraAddData::toCRCSegment() { return renderItem(*this, segmentFrame(*this, *parent)); }

std::string VestraAddData::getClient() { return parent->getClient(); }

}  // namespace Oza
