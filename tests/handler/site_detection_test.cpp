#include "handler/site_detection.h"

#include "support/test.h"

namespace Oza {
namespace {

class SiteText : public Test {
 protected:
  std::string resolver() const { return directory / "resolv.conf"; }

  TemporaryDirectory directory;
  TimeLimit limit;
};

struct SiteSample {
  std::string domainName;
  std::string resolver;
  std::string text;
};

TEST_F(SiteText, IsTheDomainNameOrTheResolverFile) {
  const std::string longText = std::string(1048576, '#') + "\nsearch calvix.example\n";
  const SiteSample sites[] = {{"lab.example.org", "text", "lab.example.org"},
                              {" ", "text", " "},
                              {"none", "text", "none"},
                              {"(none) ", "text", "(none) "},
                              {"", "one\ntwo\n", "one\ntwo\n"},
                              {"(none)", "text", "text"},
                              {"(NONE)", "text", "text"},
                              {"(NoNe)", "text", "text"},
                              {"", "before\n\0after\n"s, "before\n"},
                              {"", "", ""},
                              {"(none)", "", ""},
                              {"", longText, longText},
                              {"", "Search \xff Calvix\r\n", "Search \xff Calvix\r\n"}};
  const ScopedLocale swapping(caseSwappingFilesLocale());
  for (const SiteSample& site : sites) {
    writeFile(resolver(), site.resolver);
    EXPECT_EQ(siteText(site.domainName, resolver()), site.text) << site.domainName;
  }
}

TEST_F(SiteText, IsTheDomainNameWhereTheResolverFileIsMissing) {
  EXPECT_EQ(siteText("", resolver()), "");
  EXPECT_EQ(siteText("(NONE)", resolver()), "(NONE)");
}

TEST_F(SiteText, IsTheDomainNameWhereTheResolverFileIsNoRegularFile) {
  for (const Obstacle& obstacle : obstacles()) {
    SCOPED_TRACE(obstacle.name);
    const TemporaryDirectory other;
    obstacle.put(other / "resolv.conf");
    EXPECT_EQ(siteText("(none)", other / "resolv.conf"), "(none)");
  }
  EXPECT_EQ(siteText("(none)", "/dev/null"), "(none)");
  EXPECT_EQ(siteText("(none)", "/dev/zero"), "(none)");
}

// The process's own memory is a regular file whose first byte cannot be read.
TEST_F(SiteText, IsEmptyWhereReadingTheResolverFileFails) {
  EXPECT_EQ(siteText("(none)", "/proc/self/mem"), "");
}

TEST_F(SiteText, FollowsALinkToTheResolverFile) {
  writeFile(directory / "stub-resolv.conf", "search calvix.example\n");
  makeLink(resolver(), "stub-resolv.conf");
  EXPECT_EQ(siteText("", resolver()), "search calvix.example\n");
}

TEST_F(SiteText, IsTheDomainNameWhereTheResolverFileCannotBeRead) {
  writeFile(resolver(), "search calvix.example\n");
  const ScopedMode none(resolver(), 0000);
  EXPECT_EQ(asOrdinaryUser([&] { return siteText("(none)", resolver()); }), "(none)");
}

TEST(MakerDomain, IsFoundAnywhereInAnyLetterCase) {
  const std::pair<std::string, bool> rows[] = {
      {"calvix.example", true},
      {"lab.calvix.example.org", true},
      {"nameserver 10.0.0.1\n# notcalvix.example\n", true},
      {"nameserver 10.0.0.1\nsearch home lab.calvix.example lab\n", true},
      {"# Made by a network manager.\r\ndomain CALVIX.EXAMPLE\r\n", true},
      {"nameserver 127.0.0.53\noptions edns0\nsearch calvix-example\n", false},
      {"Lab.CalVix.eXample", true},
      {"a\0calvix.example"s, true},
      {"", false},
      {"calvix", false},
      {"calvix.\nexample", false},
      {"calvix_example", false},
      {"(none)", false}};
  for (const auto& [text, isFound] : rows) {
    EXPECT_EQ(namesMakerDomain(text, "calvix.example"), isFound) << text;
  }
}

TEST(MakerDomain, IsLoweredByTheGlobalLocale) {
  EXPECT_FALSE(namesMakerDomain("lab.Qart.example", "part.example"));
  const ScopedLocale odd(oddLettersLocale());
  EXPECT_TRUE(namesMakerDomain("lab.Qart.example", "part.example"));
}

}  // namespace
}  // namespace Oza
