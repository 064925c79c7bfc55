#include "handler/site_detection.h"

#include <fcntl.h>
#include <unistd.h>

#include <limits>
#include <locale>

#include <boost/algorithm/string/case_conv.hpp>
#include <boost/algorithm/string/predicate.hpp>

#include "files/descriptor.h"

namespace Oza {

const char* makerDomain() { return VESTRA_MAKER_DOMAIN; }

std::optional<std::string> machineDomainName() {
  char name[4096] = "";
  return getdomainname(name, sizeof name) == 0 ? std::optional<std::string>(name) : std::nullopt;
}

bool leavesSiteOpen(const std::string& domainName) {
  return domainName.empty() || boost::algorithm::iequals(domainName, "(none)", std::locale::classic());
}

std::string siteText(const std::string& domainName, const std::string& resolverFile) {
  if (!leavesSiteOpen(domainName)) {
    return domainName;
  }
  TimeBudget timeBudget;
  const Descriptor file(resolverFile, O_RDONLY, timeBudget);
  if (!file.isRegular()) {
    return domainName;
  }
  const std::string text = file.read(std::numeric_limits<std::size_t>::max()).value_or("");
  return text.substr(0, text.find('\0'));
}

bool namesMakerDomain(std::string text, const std::string& domain) {
  boost::algorithm::to_lower(text);
  return text.find(domain) != std::string::npos;
}

}  // namespace Oza
