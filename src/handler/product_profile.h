#ifndef VESTRA_HANDLER_PRODUCT_PROFILE_H
#define VESTRA_HANDLER_PRODUCT_PROFILE_H

#include <string>

#include <vestra/vestra.h>

namespace Oza {

/// What a product is called, and the names of its files in a project's vestra
/// directory.
struct ProductProfile {
  const char* name;
  /// Also the name of its client.
  const char* lowerCaseName;
  const char* script;
  const char* rules;
  const char* xml;
  const char* html;
};

/// The lab tool's log. getLogFileName returns its path for every product.
inline constexpr char LOG_FILE[] = "tavlo_vestra.log";

/// Whether the product is the simulator: type 0 or 1. Every other one is the lab tool.
bool isSimulator(Vestra::ProductType product);

const ProductProfile& profileOf(Vestra::ProductType product);

/// The directory of all report files of a project, with a final slash. Doubled slashes are
/// kept.
std::string vestraDirectoryOf(const std::string& projectDirectory);

}  // namespace Oza

#endif
