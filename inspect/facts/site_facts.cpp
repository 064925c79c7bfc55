#include "facts/site_facts.h"

#include <boost/algorithm/string/case_conv.hpp>

#include "facts/user_facts.h"
#include "handler/site_detection.h"

namespace vestra::inspect {
namespace {

/// The first line that alone names the maker's domain, and where it last begins there.
void findEvidence(const std::string& text, SiteFacts& site) {
  const std::vector<std::string> lines = linesOf(text);
  site.resolverLines = lines.size();
  for (std::size_t i = 0; i < lines.size() && site.line == 0; ++i) {
    const std::size_t column = boost::algorithm::to_lower_copy(lines[i]).rfind(Oza::makerDomain());
    if (column != std::string::npos) {
      site.column = column + 1;
      site.line = i + 1;
      site.lineText = lines[i];
    }
  }
}

}  // namespace

SiteFacts lookAtSite(const HostContext& context) {
  SiteFacts site;
  site.overrideIsOn = context.isSwitchedOn(INTERNAL_VARIABLE);
  const std::optional<std::string> domainName = Oza::machineDomainName();
  if (!domainName) {
    return site;
  }
  site.domainName = *domainName;
  site.usesResolverFile = Oza::leavesSiteOpen(*domainName);
  const std::string text = Oza::siteText(*domainName, Oza::RESOLVER_FILE);
  findEvidence(text, site);
  site.internalWithoutOverride = Oza::namesMakerDomain(text, Oza::makerDomain());
  site.internal = site.internalWithoutOverride && !site.overrideIsOn;
  return site;
}

}  // namespace vestra::inspect
