#include "handler/site_detection.h"

#include <fstream>
#include <locale>

#include <boost/algorithm/string/case_conv.hpp>
#include <boost/algorithm/string/predicate.hpp>

#include "files/open_file.h"
#include "files/read_line.h"

namespace Oza {
namespace {

bool saysNothing(const std::string& domainName) {
  return domainName.empty() || boost::algorithm::iequals(domainName, "(none)", std::locale::classic());
}

}  // namespace

std::string siteText(const std::string& domainName, const std::string& resolverFile) {
  if (!saysNothing(domainName)) {
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

bool namesMakerDomain(std::string text, const std::string& makerDomain) {
  boost::algorithm::to_lower(text);
  return text.find(makerDomain) != std::string::npos;
}

}  // namespace Oza
