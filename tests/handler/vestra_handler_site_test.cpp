#include <boost/algorithm/string/case_conv.hpp>

#include "handler/vestra_handler.h"
#include "support/interposed/c_library.h"
#include "support/test.h"

namespace Oza {
namespace {

/// The build's own name for it.
const std::string MAKER_DOMAIN = VESTRA_MAKER_DOMAIN;

constexpr const char* OVERRIDE = "CALVIX_VESTRA_INTERNAL_TRANSMIT";

class Site : public Test {
 protected:
  ScopedEnv noOverride{OVERRIDE, std::nullopt};
  VestraHandler handler;
};

TEST_F(Site, IsInternalWhereTheDomainNameHoldsTheMakers) {
  const std::pair<std::optional<std::string>, bool> rows[] = {
      {MAKER_DOMAIN, true},
      {"lab7." + MAKER_DOMAIN + ".org", true},
      {boost::algorithm::to_upper_copy(MAKER_DOMAIN, std::locale::classic()), true},
      {std::string(4095 - MAKER_DOMAIN.size(), '.') + MAKER_DOMAIN, true},
      {"lab.elsewhere.example", false},
      {std::nullopt, false}};
  for (const auto& [name, isInternal] : rows) {
    const ScopedDomainName domain(name);
    VestraHandler another;
    EXPECT_EQ(domain.calls(), 0);
    EXPECT_EQ(another.isInternal(), isInternal) << name.value_or("cannot be told");
    EXPECT_EQ(another.isInternal(), isInternal);
    EXPECT_EQ(domain.calls(), 1);
  }
}

TEST_F(Site, StaysInternalUnderAnEmptyOverride) {
  const ScopedDomainName domain(MAKER_DOMAIN);
  const ScopedEnv empty(OVERRIDE, "");
  EXPECT_TRUE(handler.isInternal());
}

TEST_F(Site, IsExternalFromAnOverrideOn) {
  const ScopedDomainName domain(MAKER_DOMAIN);
  EXPECT_TRUE(handler.isInternal());
  {
    const ScopedEnv set(OVERRIDE, "0");
    EXPECT_FALSE(handler.isInternal());
  }
  EXPECT_FALSE(handler.isInternal());
  EXPECT_EQ(domain.calls(), 1);
  EXPECT_TRUE(VestraHandler().isInternal());
}

TEST_F(Site, IsNotMadeInternalByTheOverride) {
  const ScopedDomainName domain("elsewhere.example");
  const ScopedEnv set(OVERRIDE, "1");
  EXPECT_FALSE(handler.isInternal());
}

/// A machine with a resolver file of its own.
class SiteByResolverFile : public Test {
 protected:
  void SetUp() override {
    if (geteuid() != 0) {
      GTEST_SKIP() << "only root can take another root directory";
    }
  }

  /// What a handler says after something was done, once it has been asked.
  static std::string siteIn(const std::string& root, const std::function<void()>& act) {
    const ScopedEnv noOverride(OVERRIDE, std::nullopt);
    return inRootDirectory(root, [&] {
      VestraHandler handler;
      handler.isInternal();
      act();
      return handler.isInternal() ? "internal" : "external";
    });
  }
};

TEST_F(SiteByResolverFile, IsToldByTheFileWithoutADomainName) {
  const std::string elsewhere = "elsewhere.example";
  const struct {
    std::optional<std::string> domainName;
    std::optional<std::string> resolver;
    const char* site;
  } rows[] = {
      {"", MAKER_DOMAIN, "internal"},        {"(none)", MAKER_DOMAIN, "internal"},
      {"(NONE)", MAKER_DOMAIN, "internal"},  {"", elsewhere, "external"},
      {elsewhere, MAKER_DOMAIN, "external"}, {std::nullopt, MAKER_DOMAIN, "external"},
      {"", std::nullopt, "external"},        {"(none)", std::nullopt, "external"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.domainName.value_or("cannot be told"));
    const TemporaryDirectory root;
    if (row.resolver) {
      writeFile(root / "etc/resolv.conf", "search " + *row.resolver + "\n");
    }
    const ScopedDomainName domain(row.domainName);
    EXPECT_EQ(siteIn(root.path(), [] {}), row.site);
  }
}

TEST_F(SiteByResolverFile, IsReadOnce) {
  const TemporaryDirectory root;
  const ScopedDomainName domain("");
  writeFile(root / "etc/resolv.conf", "search elsewhere.example\n");
  EXPECT_EQ(siteIn(root.path(), [] { writeFile("/etc/resolv.conf", MAKER_DOMAIN); }), "external");
}

}  // namespace
}  // namespace Oza
