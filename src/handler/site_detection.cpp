#include "handler/site_detection.h"

#include <unistd.h>

#include <fstream>
#include <locale>

#include <boost/algorithm/string/case_conv.hpp>
#include <boost/algorithm/string/predicate.hpp>

#include "files/open_file.h"
#include "files/read_line.h"

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
  std::ifstream in;
  openFile(in, resolverFile, std::ios_base::in);
  if (!in.is_open()) {
    return domainName;
  }
  std::string text;
  readLine(in, text, '\0');
  return text;
}

bool namesMakerDomain(std::string text, const std::string& domain) {
  boost::algorithm::to_lower(text);
  return text.find(domain) != std::string::npos;
}

}  // namespace Oza
