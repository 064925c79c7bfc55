#include <vestra/vestra_data.h>

#include <utility>

#include "data/item_renderer.h"

namespace Oza {
namespace {

/// One line of a rules block.
std::string setting(const std::string& name, const std::string& value) {
  return name + "=\"" + value + "\";\n";
}

/// Each pair of backslashes as one, from left to right: three become two.
std::string withSingleBackslashes(const std::string& path) {
  std::string text;
  for (std::size_t i = 0; i < path.size(); ++i) {
    text += path[i];
    if (path.compare(i, 2, "\\\\") == 0) {
      ++i;
    }
  }
  return text;
}

}  // namespace

VestraParentData::VestraParentData(std::string contextPath, std::string clientName, bool inUserEnvStyle)
    : context(std::move(contextPath)), client(std::move(clientName)), userEnvStyle(inUserEnvStyle) {}

VestraParentData::~VestraParentData() {
  for (VestraDataInterface* child : children) {
    delete child;
  }
}

std::string VestraParentData::toTclString() {
  const ItemRenderer lines = ItemRenderer::forScript(getClient(), getFormattedContext());
  return lines.renderChildren(*this, &VestraDataInterface::toTclString);
}

std::string VestraParentData::toCRCSegment() {
  const ItemRenderer segments = ItemRenderer::forChecksum(getClient(), getCRCContext());
  return segments.renderChildren(*this, &VestraDataInterface::toCRCSegment);
}

std::string VestraParentData::getClient() { return client; }

void VestraParentData::setVestraId(std::string id) { vestraId = std::move(id); }

std::string VestraParentData::getContext() { return vestraId.empty() ? context : context + "/" + vestraId; }

std::string VestraParentData::getFormattedContext() { return getContext(); }

std::string VestraParentData::getWdmContext() { return getFormattedContext(); }

std::string VestraParentData::getCRCContext() { return withSingleBackslashes(getFormattedContext()); }

std::string VestraParentData::getWdmString() {
  const std::string path = getWdmContext();
  const std::string style = userEnvStyle ? "UserEnvStyle" : "FennoxStatsStyle";
  return "        {\n" + setting("            context", path) + setting("            xml_map", path) +
         setting("            html_map", path) + setting("                html_format", style) + "        }";
}

void VestraParentData::addChild(VestraDataInterface* child) { children.push_back(child); }

}  // namespace Oza
