#ifndef VESTRA_HANDLER_PRODUCT_PROFILE_H
#define VESTRA_HANDLER_PRODUCT_PROFILE_H

#include <string>

#include <vestra/vestra.h>

namespace Oza {

/// What a product is called, and the names of its files in a project's vestra
/// directory.
struct ProductProfile {
  const char* name;
  /// The name of its client too.
  const char* lowerCaseName;
  const char* script;
  const char* rules;
  const char* xml;
  const char* html;
};

/// The lab tool's log, whose name is told for every product.
inline constexpr char LOG_FILE[] = "tavlo_vestra.log";

/// Whether the product is the simulator: type 0 or 1. Every other one is the lab tool.
bool isSimulator(Vestra::ProductType product);

const ProductProfile& profileOf(Vestra::ProductType product);

/// The directory of a project that all files of its reports lie in, with a final
/// slash. Doubled slashes are kept.
std::string vestraDirectoryOf(const std::string& projectDirectory);

}  // namespace Oza

#endif
