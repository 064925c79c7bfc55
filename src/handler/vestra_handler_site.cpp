#include <ctime>
#include <optional>

#include "handler/environment_switch.h"
#include "handler/site_detection.h"
#include "handler/support_library.h"
#include "handler/time_stamp.h"
#include "handler/vestra_handler.h"

namespace Oza {
namespace {

// Where the domain name cannot be told, the resolver file is not asked either.
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

std::string VestraHandler::getTimeStampSeg() { return timeStamp(std::time(nullptr)); }

std::string VestraHandler::getRegId() { return support_library::registrationId(); }

}  // namespace Oza
