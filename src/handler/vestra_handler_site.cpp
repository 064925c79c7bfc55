#include <unistd.h>

#include <ctime>

#include "handler/environment_switch.h"
#include "handler/site_detection.h"
#include "handler/support_library.h"
#include "handler/vestra_handler.h"

namespace Oza {
namespace {

constexpr std::uint32_t EXTERNAL_SITE = 0;
constexpr std::uint32_t INTERNAL_SITE = 1;

// Where the domain name cannot be told, the resolver file is not asked either.
bool isMakersMachine() {
  char domainName[4096] = "";
  if (getdomainname(domainName, sizeof domainName) != 0) {
    return false;
  }
  return namesMakerDomain(siteText(domainName, "/etc/resolv.conf"), VESTRA_MAKER_DOMAIN);
}

}  // namespace

bool VestraHandler::isInternal() {
  if (internalSite == SITE_NOT_YET_DETERMINED) {
    internalSite = isMakersMachine() ? INTERNAL_SITE : EXTERNAL_SITE;
  }
  if (internalSite == INTERNAL_SITE && isSwitchedOn("CALVIX_VESTRA_INTERNAL_TRANSMIT")) {
    internalSite = EXTERNAL_SITE;
  }
  return internalSite == INTERNAL_SITE;
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
