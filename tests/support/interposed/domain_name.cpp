#include "support/interposed/domain_name.h"

#include <cerrno>
#include <cstddef>
#include <utility>

namespace vestra_test {
namespace {

std::optional<std::string> domainName;
int timesAsked = 0;

}  // namespace

ScopedDomainName::ScopedDomainName(std::optional<std::string> name) {
  domainName = std::move(name);
  timesAsked = 0;
}

ScopedDomainName::~ScopedDomainName() { domainName.reset(); }

int ScopedDomainName::calls() const { return timesAsked; }

}  // namespace vestra_test

extern "C" int getdomainname(char* name, std::size_t size) noexcept {
  ++vestra_test::timesAsked;
  if (!vestra_test::domainName || vestra_test::domainName->size() >= size) {
    errno = EINVAL;
    return -1;
  }
  const std::size_t length = vestra_test::domainName->copy(name, size - 1);
  name[length] = '\0';
  return 0;
}
