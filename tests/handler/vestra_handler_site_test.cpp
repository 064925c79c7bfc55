#include <gtest/gtest.h>

#include <optional>
#include <string>

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

TEST_F(Site, SiteIsInternalWhereTheDomainNameIsTheMakers) {
  const ScopedDomainName domain(MAKER_DOMAIN);
  EXPECT_TRUE(handler.isInternal());
}

TEST_F(Site, SiteIsInternalWhereTheDomainNameHoldsTheMakers) {
  const ScopedDomainName domain("lab7." + MAKER_DOMAIN + ".org");
  EXPECT_TRUE(handler.isInternal());
}

TEST_F(Site, SiteIsInternalWhereTheDomainNameHoldsTheMakersInCapitals) {
  std::string capitals = MAKER_DOMAIN;
  for (char& letter : capitals) {
    letter = std::toupper(letter, std::locale::classic());
  }
  const ScopedDomainName domain(capitals);
  EXPECT_TRUE(handler.isInternal());
}

TEST_F(Site, SiteIsExternalWhereTheDomainNameIsAnother) {
  const ScopedDomainName domain("lab.elsewhere.example");
  EXPECT_FALSE(handler.isInternal());
}

TEST_F(Site, SiteIsExternalWhereTheDomainNameCannotBeTold) {
  const ScopedDomainName fails(std::nullopt);
  EXPECT_FALSE(handler.isInternal());
  EXPECT_EQ(fails.calls(), 1);
}

TEST_F(Site, DomainNameOf4095BytesIsRead) {
  const ScopedDomainName domain(std::string(4095 - MAKER_DOMAIN.size(), '.') + MAKER_DOMAIN);
  EXPECT_TRUE(handler.isInternal());
}

TEST_F(Site, ExternalMachineIsFoundOutOnce) {
  const ScopedDomainName domain("elsewhere.example");
  EXPECT_FALSE(handler.isInternal());
  EXPECT_FALSE(handler.isInternal());
  EXPECT_EQ(domain.calls(), 1);
}

TEST_F(Site, SiteOfAnInternalMachineIsFoundOutOnce) {
  const ScopedDomainName domain(MAKER_DOMAIN);
  EXPECT_TRUE(handler.isInternal());
  EXPECT_TRUE(handler.isInternal());
  EXPECT_EQ(domain.calls(), 1);
}

TEST_F(Site, SiteIsNotFoundOutBeforeItIsAskedFor) {
  const ScopedDomainName domain(MAKER_DOMAIN);
  const VestraHandler another;
  EXPECT_EQ(domain.calls(), 0);
}

TEST_F(Site, SiteOfAnExternalMachineStaysWhenTheDomainNameChanges) {
  {
    const ScopedDomainName before("elsewhere.example");
    EXPECT_FALSE(handler.isInternal());
  }
  const ScopedDomainName after(MAKER_DOMAIN);
  EXPECT_FALSE(handler.isInternal());
  EXPECT_EQ(after.calls(), 0);
}

TEST_F(Site, SiteStaysInternalUnderAnEmptyOverride) {
  const ScopedDomainName domain(MAKER_DOMAIN);
  const ScopedEnv empty(OVERRIDE, "");
  EXPECT_TRUE(handler.isInternal());
  EXPECT_TRUE(handler.isInternal());
}

TEST_F(Site, SiteIsExternalUnderAnOverrideAndStaysSoWithoutIt) {
  const ScopedDomainName domain(MAKER_DOMAIN);
  {
    const ScopedEnv set(OVERRIDE, "0");
    EXPECT_FALSE(handler.isInternal());
  }
  EXPECT_FALSE(handler.isInternal());
  EXPECT_EQ(domain.calls(), 1);
}

TEST_F(Site, SiteTakesAnOverrideThatComesLater) {
  const ScopedDomainName domain(MAKER_DOMAIN);
  EXPECT_TRUE(handler.isInternal());
  {
    const ScopedEnv set(OVERRIDE, "yes");
    EXPECT_FALSE(handler.isInternal());
  }
  EXPECT_FALSE(handler.isInternal());
}

TEST_F(Site, SiteOfAnExternalMachineIsNotMadeInternalByTheOverride) {
  const ScopedDomainName domain("elsewhere.example");
  const ScopedEnv set(OVERRIDE, "1");
  EXPECT_FALSE(handler.isInternal());
}

TEST_F(Site, OverrideOfOneHandlerIsNotAnothers) {
  const ScopedDomainName domain(MAKER_DOMAIN);
  {
    const ScopedEnv set(OVERRIDE, "1");
    EXPECT_FALSE(handler.isInternal());
  }
  EXPECT_TRUE(VestraHandler().isInternal());
}

/// A machine with a resolver file of its own.
class SiteByResolver : public testing::Test {
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

TEST_F(SiteByResolver, ResolverFileIsReadWithoutADomainName) {
  resolverNames(MAKER_DOMAIN);
  EXPECT_EQ(siteWithDomainName(""), "internal");
  EXPECT_EQ(siteWithDomainName("(none)"), "internal");
  EXPECT_EQ(siteWithDomainName("(NONE)"), "internal");
  resolverNames("elsewhere.example");
  EXPECT_EQ(siteWithDomainName(""), "external");
}

TEST_F(SiteByResolver, ResolverFileIsNotReadWithADomainName) {
  resolverNames(MAKER_DOMAIN);
  EXPECT_EQ(siteWithDomainName("elsewhere.example"), "external");
}

TEST_F(SiteByResolver, ResolverFileIsNotReadWhereTheDomainNameCannotBeTold) {
  resolverNames(MAKER_DOMAIN);
  EXPECT_EQ(siteWithDomainName(std::nullopt), "external");
}

TEST_F(SiteByResolver, ResolverFileThatIsMissingLeavesTheMachineExternal) {
  EXPECT_EQ(siteWithDomainName(""), "external");
  EXPECT_EQ(siteWithDomainName("(none)"), "external");
}

TEST_F(SiteByResolver, ResolverFileOfAnExternalMachineIsReadOnce) {
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
