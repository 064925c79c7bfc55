#ifndef VESTRA_TESTS_SUPPORT_INTERPOSED_DOMAIN_NAME_H
#define VESTRA_TESTS_SUPPORT_INTERPOSED_DOMAIN_NAME_H

#include <optional>
#include <string>

namespace vestra_test {

/// Makes `getdomainname` answer. The program that links this has one of its own,
/// which fails while there is no such object.
class ScopedDomainName {
 public:
  /// @param name  Nothing makes the call fail.
  explicit ScopedDomainName(std::optional<std::string> name);
  ScopedDomainName(const ScopedDomainName&) = delete;
  ScopedDomainName& operator=(const ScopedDomainName&) = delete;
  ~ScopedDomainName();

  /// How often it was asked.
  int calls() const;
};

}  // namespace vestra_test

#endif
