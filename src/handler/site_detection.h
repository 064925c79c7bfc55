#ifndef VESTRA_HANDLER_SITE_DETECTION_H
#define VESTRA_HANDLER_SITE_DETECTION_H

#include <optional>
#include <string>

namespace Oza {

/// The maker's domain name that this library was built with, in lower case.
const char* makerDomain();

/// The file that is searched on a machine without a domain name.
inline constexpr char RESOLVER_FILE[] = "/etc/resolv.conf";

/// The machine's NIS domain name; nothing when getdomainname(2) fails.
std::optional<std::string> machineDomainName();

/// Whether a domain name does not decide the site: it is empty or "(none)" in any letter
/// case.
bool leavesSiteOpen(const std::string& domainName);

/// The text that decides the site: the domain name or, if that does not decide it, the whole
/// resolver file up to its first NUL. The domain name too if the resolver file cannot be
/// opened or is not a regular file; empty after a read error.
std::string siteText(const std::string& domainName, const std::string& resolverFile);

/// Whether the text, lower-cased by the global locale, contains the domain name, which is in
/// lower case. Comments and server names count, too.
bool namesMakerDomain(std::string text, const std::string& domain);

}  // namespace Oza

#endif
