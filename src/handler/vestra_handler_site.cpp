#include <optional>

#include "handler/environment_switch.h"
#include "handler/site_detection.h"
#include "handler/vestra_handler.h"

namespace Oza {
namespace {

// The resolver file is not read when getdomainname(2) fails.
bool isMakersMachine() {
  const std::optional<std::string> domainName = machineDomainName();
  return domainName && namesMakerDomain(siteText(*domainName, RESOLVER_FILE), makerDomain());
}

}  // namespace

bool VestraHandler::isInternal() {
  if (site == Site::NOT_YET_DETERMINED) {
    site = isMakersMachine() ? Site::INTERNAL : Site::EXTERNAL;
  }
  if (site == Site::INTERNAL && isSwitchedOn("CALVIX_VESTRA_INTERNAL_TRANSMIT")) {
    site = Site::EXTERNAL;
  }
  return site == Site::INTERNAL;
}

}  // namespace Oza
