#include <set>
#include <vector>

#include <boost/algorithm/string/case_conv.hpp>

#include "handler/vestra_handler.h"

namespace Oza {
namespace {

// In report order.
constexpr const char* PROJECT_KEYS[] = {"date_generated", "product_version", "build_version",
                                        "os_platform",    "registration_id", "tool_flow",
                                        "beta",           "route_design",    "target_family",
                                        "target_device",  "target_package",  "target_speed",
                                        "random_id",      "project_id",      "project_iteration"};

constexpr const char* MISSING_VALUE = "not_applicable";

}  // namespace

// Until everything is found or made, the context keeps all that it had: running
// out of memory on the way loses no item and frees none twice.
void VestraHandler::uniqueAndReorderData() {
  VestraParentData* context = contextAt(Vestra::SOFTWARE_VERSION_AND_TARGET_DEVICE);
  std::set<VestraDataInterface*, key_compare> items;
  std::vector<VestraDataInterface*> unwanted;
  for (VestraDataInterface* child : context->children) {
    boost::algorithm::to_lower(static_cast<VestraAddData*>(child)->key);
    if (!items.insert(child).second) {
      unwanted.push_back(child);
    }
  }

  std::vector<VestraDataInterface*> ordered;
  for (const char* key : PROJECT_KEYS) {
    VestraAddData probe(key, "", context);
    const auto found = items.find(&probe);
    if (found == items.end()) {
      addData(key, MISSING_VALUE, Vestra::SOFTWARE_VERSION_AND_TARGET_DEVICE);
      ordered.push_back(context->children.back());
    } else {
      ordered.push_back(*found);
      items.erase(found);
    }
  }

  // What is left in the set has a key that the report does not know.
  unwanted.insert(unwanted.end(), items.begin(), items.end());
  context->children.swap(ordered);
  for (VestraDataInterface* item : unwanted) {
    delete item;
  }
}

}  // namespace Oza
