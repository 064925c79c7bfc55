#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <utility>

#include <boost/algorithm/string/case_conv.hpp>

#include "handler/vestra_handler.h"
#include "support/child_process.h"
#include "support/files.h"
#include "support/interposed/domain_name.h"
#include "support/scoped_env.h"
#include "support/temporary_directory.h"

namespace Oza {
namespace {

using vestra_test::ScopedDomainName;
using vestra_test::ScopedEnv;
using vestra_test::TemporaryDirectory;

/// The build's own name for it.
const std::string MAKER_DOMAIN = VESTRA_MAKER_DOMAIN;

constexpr const char* OVERRIDE = "CALVIX_VESTRA_INTERNAL_TRANSMIT";

class Site : public testing::Test {
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

TEST_F(Site, StaysExternalWhenTheDomainNameChanges) {
  {
    const ScopedDomainName before("elsewhere.example");
    EXPECT_FALSE(handler.isInternal());
  }
  const ScopedDomainName after(MAKER_DOMAIN);
  EXPECT_FALSE(handler.isInternal());
  EXPECT_EQ(after.calls(), 0);
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
class SiteByResolverFile : public testing::Test {
 protected:
  void SetUp() override {
    if (geteuid() != 0) {
      GTEST_SKIP() << "only root can take another root directory";
    }
  }

  std::string siteWithDomainName(const std::optional<std::string>& name) const {
    const ScopedDomainName domain(name);
    const ScopedEnv noOverride(OVERRIDE, std::nullopt);
    return vestra_test::inRootDirectory(
        root.path(), [] { return VestraHandler().isInternal() ? "internal" : "external"; });
  }

  void resolverNames(const std::string& domain) const {
    vestra_test::writeFile(root / "etc/resolv.conf", "search " + domain + "\n");
  }

  TemporaryDirectory root;
};

TEST_F(SiteByResolverFile, WithoutADomainName) {
  resolverNames(MAKER_DOMAIN);
  EXPECT_EQ(siteWithDomainName(""), "internal");
  EXPECT_EQ(siteWithDomainName("(none)"), "internal");
  EXPECT_EQ(siteWithDomainName("(NONE)"), "internal");
  resolverNames("elsewhere.example");
  EXPECT_EQ(siteWithDomainName(""), "external");
}

TEST_F(SiteByResolverFile, GivesWayToADomainName) {
  resolverNames(MAKER_DOMAIN);
  EXPECT_EQ(siteWithDomainName("elsewhere.example"), "external");
}

TEST_F(SiteByResolverFile, IsNotReadWhereTheDomainNameCannotBeTold) {
  resolverNames(MAKER_DOMAIN);
  EXPECT_EQ(siteWithDomainName(std::nullopt), "external");
}

TEST_F(SiteByResolverFile, IsExternalWithoutTheFile) {
  EXPECT_EQ(siteWithDomainName(""), "external");
  EXPECT_EQ(siteWithDomainName("(none)"), "external");
}

TEST_F(SiteByResolverFile, ReadsItOnce) {
  resolverNames("elsewhere.example");
  const ScopedDomainName domain("");
  EXPECT_EQ(vestra_test::inRootDirectory(root.path(),
                                         [] {
                                           VestraHandler handler;
                                           handler.isInternal();
                                           vestra_test::writeFile("/etc/resolv.conf", MAKER_DOMAIN);
                                           return handler.isInternal() ? "internal" : "external";
                                         }),
            "external");
}

}  // namespace
}  // namespace Oza
