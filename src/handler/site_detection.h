#ifndef VESTRA_HANDLER_SITE_DETECTION_H
#define VESTRA_HANDLER_SITE_DETECTION_H

#include <string>

namespace Oza {

/// What tells the machine's network: its domain name or, where that is empty or
/// "(none)" in any letter case, the resolver file's text up to its first NUL. A
/// resolver file that cannot be read leaves the domain name.
std::string siteText(const std::string& domainName, const std::string& resolverFile);

/// Whether the text, lower-cased by the global locale, holds `makerDomain`, which
/// is in lower case, anywhere: in a search list, a comment or a server's name too.
bool namesMakerDomain(std::string text, const std::string& makerDomain);

}  // namespace Oza

#endif
