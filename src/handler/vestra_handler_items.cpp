#include <memory>
#include <utility>

#include "handler/project_facts.h"
#include "handler/vestra_handler.h"

namespace Oza {

void VestraHandler::addData(std::string key, std::string value, Vestra::SectionType section) {
  VestraParentData& context = contextAt(section);
  auto item = std::make_unique<VestraAddData>(std::move(key), std::move(value), &context);
  context.addChild(item.get());
  static_cast<void>(item.release());  // the context owns it now
}

void VestraHandler::addData(VestraDataInterface* item, Vestra::SectionType section) {
  contextAt(section).addChild(item);
}

void VestraHandler::addData(VestraDataInterface* item) { contexts.push_back(item); }

bool VestraHandler::isParentEmpty(unsigned int index) {
  return NodeAccess::children(contextAt(index)).empty();
}

void VestraHandler::uniqueAndReorderData() {
  orderProjectFacts(contextAt(Vestra::SOFTWARE_VERSION_AND_TARGET_DEVICE));
}

std::string VestraHandler::getOrbeloProjectId() const {
  return hostProjectId(contextAt(Vestra::SOFTWARE_VERSION_AND_TARGET_DEVICE));
}

VestraParentData& VestraHandler::contextAt(unsigned int index) const {
  return static_cast<VestraParentData&>(*contexts[index]);
}

}  // namespace Oza
