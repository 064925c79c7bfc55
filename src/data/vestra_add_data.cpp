#include <vestra/vestra_data.h>

#include <utility>

namespace Oza {

VestraAddData::VestraAddData(std::string itemKey, std::string itemValue, VestraParentData* itemParent)
    : key(std::move(itemKey)), value(std::move(itemValue)), parent(itemParent) {}

VestraAddData::~VestraAddData() = default;

std::string VestraAddData::toTclString() {
  std::string line;
  line.append(TYPE_ADD_DATA).append(SPACE);
  line.append(PARAM_CLIENT).append(SPACE).append(getClient()).append(SPACE);
  line.append(PARAM_KEY).append(SPACE).append(key).append(SPACE);
  line.append(PARAM_VALUE).append(SPACE).append(1, '"').append(value).append(1, '"').append(SPACE);
  line.append(PARAM_CONTEXT).append(SPACE);
  line.append(1, '"').append(parent->getFormattedContext()).append(1, '"');
  line.append(NEW_LINE);
  return line;
}

std::string VestraAddData::toCRCSegment() {
  return key + value + getClient() + parent->getCRCContext();
}

std::string VestraAddData::getClient() { return parent->getClient(); }

}  // namespace Oza
