#include <ctime>
#include <optional>

#include "handler/environment_switch.h"
#include "handler/site_detection.h"
#include "handler/support_library.h"
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

// The host may have threads and a time zone that it changes: its own localtime
// buffer stays untouched, and the zone is read anew as localtime would.
std::string VestraHandler::getTimeStampSeg() {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  tzset();
  localtime_r(&now, &local);
  char text[16] = "";
  std::strftime(text, sizeof text, "%j%Y%H", &local);
  return text;
}

std::string VestraHandler::getRegId() { return support_library::registrationId(); }

}  // namespace Oza
