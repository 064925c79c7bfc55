#ifndef VESTRA_INSPECT_FACTS_SITE_FACTS_H
#define VESTRA_INSPECT_FACTS_SITE_FACTS_H

#include <cstddef>
#include <string>

#include "facts/host_context.h"

namespace vestra::inspect {

/// Whether the machine counts as one of the maker's own, and what says so.
struct SiteFacts {
  /// What reports say.
  bool internal = false;
  /// What they would say without CALVIX_VESTRA_INTERNAL_TRANSMIT.
  bool internalWithoutOverride = false;
  bool overrideIsOn = false;
  std::string domainName;
  /// Whether the domain name says nothing, so that the resolver file is searched.
  bool usesResolverFile = false;
  std::size_t resolverLines = 0;
  /// Where the maker's domain stands, counted from 1; 0 when it does not.
  std::size_t line = 0;
  std::size_t column = 0;
  std::string lineText;
};

SiteFacts lookAtSite(const HostContext& context);

}  // namespace vestra::inspect

#endif
