#include "facts/site_facts.h"

#include "facts/user_facts.h"
#include "handler/site_detection.h"

namespace vestra::inspect {
namespace {

/// The first line that alone names the maker's domain, and the first column from which
/// it still does.
void findEvidence(const std::string& text, SiteFacts& site) {
  const std::vector<std::string> lines = linesOf(text);
  site.resolverLines = lines.size();
  for (std::size_t i = 0; i < lines.size() && site.line == 0; ++i) {
    std::size_t column = 0;
    while (Oza::namesMakerDomain(lines[i].substr(column), Oza::makerDomain())) {
      ++column;
      site.line = i + 1;
      site.column = column;
      site.lineText = lines[i];
    }
  }
}

}  // namespace

SiteFacts lookAtSite(const View& view) {
  SiteFacts site;
  site.overrideIsOn = view.isSwitchedOn(INTERNAL_VARIABLE);
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
