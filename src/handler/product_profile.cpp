#include "handler/product_profile.h"

namespace Oza {
namespace {

constexpr ProductProfile SIMULATOR{"KELVO",
                                   "kelvo",
                                   "kelvo_vestra.tcl",
                                   "usage_statistics_ext_kelvo.wdm",
                                   "usage_statistics_ext_kelvo.xml",
                                   "usage_statistics_ext_kelvo.html"};
constexpr ProductProfile LAB_TOOL{"TAVLO",
                                  "tavlo",
                                  "tavlo_vestra.tcl",
                                  "usage_statistics_ext_tavlo.wdm",
                                  "usage_statistics_ext_tavlo.xml",
                                  "usage_statistics_ext_tavlo.html"};

}  // namespace

bool isSimulator(Vestra::ProductType product) { return product <= Vestra::KELVO_ALT; }

const ProductProfile& profileOf(Vestra::ProductType product) {
  return isSimulator(product) ? SIMULATOR : LAB_TOOL;
}

std::string vestraDirectoryOf(const std::string& projectDirectory) { return projectDirectory + "/vestra/"; }

}  // namespace Oza
