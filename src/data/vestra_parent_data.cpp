#include <vestra/vestra_data.h>

#include <utility>

#include <boost/algorithm/string/replace.hpp>

namespace Oza {

VestraParentData::VestraParentData(std::string contextPath, std::string clientName, bool inUserEnvStyle)
    : context(std::move(contextPath)), client(std::move(clientName)), userEnvStyle(inUserEnvStyle) {}

VestraParentData::~VestraParentData() {
  for (VestraDataInterface* child : children) {
    delete child;
  }
}

std::string VestraParentData::toTclString() {
  std::string lines;
  for (VestraDataInterface* child : children) {
    lines += child->toTclString();
  }
  return lines;
}

std::string VestraParentData::toCRCSegment() {
  std::string segments;
  for (VestraDataInterface* child : children) {
    segments += child->toCRCSegment();
  }
  return segments;
}

std::string VestraParentData::getClient() { return client; }

void VestraParentData::setVestraId(std::string id) { vestraId = std::move(id); }

std::string VestraParentData::getContext() {
  return vestraId.empty() ? context : context + "/" + vestraId;
}

std::string VestraParentData::getFormattedContext() { return getContext(); }

std::string VestraParentData::getWdmContext() { return getFormattedContext(); }

std::string VestraParentData::getCRCContext() {
  std::string path = getFormattedContext();
  boost::algorithm::replace_all(path, "\\\\", "\\");
  return path;
}

std::string VestraParentData::getWdmString() {
  const std::string path = getWdmContext();
  const std::string style = userEnvStyle ? "UserEnvStyle" : "FennoxStatsStyle";
  return "        {\n"
         "            context=\"" + path + "\";\n"
         "            xml_map=\"" + path + "\";\n"
         "            html_map=\"" + path + "\";\n"
         "                html_format=\"" + style + "\";\n"
         "        }";
}

void VestraParentData::addChild(VestraDataInterface* child) { children.push_back(child); }

}  // namespace Oza
