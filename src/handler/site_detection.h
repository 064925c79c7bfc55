#ifndef VESTRA_HANDLER_SITE_DETECTION_H
#define VESTRA_HANDLER_SITE_DETECTION_H

#include <optional>
#include <string>

namespace Oza {

/// The maker's domain name that this library was built with, in lower case.
const char* makerDomain();

/// The file that tells the network of a machine without a domain name.
inline constexpr char RESOLVER_FILE[] = "/etc/resolv.conf";

/// The machine's domain name; nothing where the system cannot tell it.
std::optional<std::string> machineDomainName();

/// Whether a domain name leaves the network open: it is empty or "(none)" in any
/// letter case.
bool leavesSiteOpen(const std::string& domainName);

/// The text that tells the machine's network: its domain name or, where that leaves it
/// open, the resolver file's text up to its first NUL. A resolver file that cannot be
/// read leaves the domain name.
std::string siteText(const std::string& domainName, const std::string& resolverFile);

/// Whether the text, lower-cased by the global locale, holds a domain name, which is
/// in lower case, anywhere: in a search list, a comment or a server's name too.
bool namesMakerDomain(std::string text, const std::string& domain);

}  // namespace Oza

#endif
