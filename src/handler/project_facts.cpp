#include "handler/project_facts.h"

#include <memory>
#include <set>
#include <vector>

#include <boost/algorithm/string/case_conv.hpp>

namespace Oza {
namespace {

// In report order.
constexpr const char* PROJECT_KEYS[] = {"date_generated", "product_version", "build_version",
                                        "os_platform",    "registration_id", "tool_flow",
                                        "beta",           "route_design",    "target_family",
                                        "target_device",  "target_package",  "target_speed",
                                        "random_id",      "project_id",      "project_iteration"};

constexpr const char* MISSING_VALUE = "not_applicable";

/// Lower-cases an item's key in place.
const std::string& lowerCasedKey(VestraDataInterface& item) {
  std::string& key = NodeAccess::key(static_cast<VestraAddData&>(item));
  boost::algorithm::to_lower(key);
  return key;
}

}  // namespace

// The context's list is replaced only after the last allocation: std::bad_alloc on the way
// loses no item and frees none twice.
void orderProjectFacts(VestraParentData& context) {
  std::vector<VestraDataInterface*>& children = NodeAccess::children(context);
  std::set<VestraDataInterface*, key_compare> items;
  std::vector<VestraDataInterface*> unwanted;
  for (VestraDataInterface* child : children) {
    lowerCasedKey(*child);
    if (!items.insert(child).second) {
      unwanted.push_back(child);
    }
  }

  std::vector<VestraDataInterface*> ordered;
  for (const char* key : PROJECT_KEYS) {
    auto missing = std::make_unique<VestraAddData>(key, MISSING_VALUE, &context);
    const auto found = items.find(missing.get());
    if (found == items.end()) {
      context.addChild(missing.get());
      ordered.push_back(missing.release());
    } else {
      ordered.push_back(*found);
      items.erase(found);
    }
  }

  // The items that are left in the set have keys that are not reported.
  unwanted.insert(unwanted.end(), items.begin(), items.end());
  children.swap(ordered);
  for (VestraDataInterface* item : unwanted) {
    delete item;
  }
}

std::string hostProjectId(VestraParentData& context) {
  for (VestraDataInterface* child : NodeAccess::children(context)) {
    if (lowerCasedKey(*child) == "project_id") {
      return NodeAccess::value(static_cast<VestraAddData&>(*child));
    }
  }
  return {};
}

}  // namespace Oza
