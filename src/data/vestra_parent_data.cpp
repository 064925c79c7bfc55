#include <vestra/vestra_data.h>

#include <utility>

#include <boost/algorithm/string/replace.hpp>

#include "data/contexts.h"
#include "data/item_renderer.h"

namespace Oza {
namespace {

/// One line of a rules block.
std::string setting(const std::string& name, const std::string& value) {
  return name + "=\"" + value + "\";\n";
}

}  // namespace

VestraDataInterface::~VestraDataInterface() = default;

VestraParentData::VestraParentData(std::string contextPath, std::string clientName, bool inUserEnvStyle)
    : context(std::move(contextPath)), client(std::move(clientName)), userEnvStyle(inUserEnvStyle) {}

VestraParentData::~VestraParentData() {
  for (VestraDataInterface* child : children) {
    delete child;
  }
}

std::string VestraParentData::toTclString() { return renderLines(*this); }

std::string VestraParentData::toCRCSegment() { return renderSegments(*this); }

std::string VestraParentData::getClient() { return client; }

void VestraParentData::setVestraId(std::string id) { vestraId = std::move(id); }

std::string VestraParentData::getContext() { return vestraId.empty() ? context : context + "/" + vestraId; }

std::string VestraParentData::getFormattedContext() { return getContext(); }

std::string VestraParentData::getWdmContext() { return getFormattedContext(); }

std::string VestraParentData::getCRCContext() {
  return boost::algorithm::replace_all_copy(getFormattedContext(), "\\\\", "\\");
}

std::string VestraParentData::getWdmString() {
  const std::string path = getWdmContext();
  return "        {\n" + setting("            context", path) + setting("            xml_map", path) +
         setting("            html_map", path) +
         setting("                html_format", htmlFormat(userEnvStyle)) + "        }";
}

void VestraParentData::addChild(VestraDataInterface* child) { children.push_back(child); }

}  // namespace Oza
