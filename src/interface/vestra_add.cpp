#include <utility>

#include <vestra/vestra.h>

#include "data/byte_string.h"
#include "interface/vestra_mgr.h"

namespace Oza {

// The value is copied first: with both null, its failure is the one that is seen.
void Vestra::add(const char* key, const char* value, SectionType section) {
  std::string valueText = byteString(value);
  std::string keyText = byteString(key);
  if (VestraMgr::isGone()) {
    return;
  }
  VestraMgr::getInstance()->getHandler()->addData(std::move(keyText), std::move(valueText), section);
}

}  // namespace Oza
