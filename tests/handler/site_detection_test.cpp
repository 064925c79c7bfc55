#include "handler/site_detection.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "support/child_process.h"
#include "support/files.h"
#include "support/scoped_locale.h"
#include "support/special_files.h"
#include "support/temporary_directory.h"
#include "support/time_limit.h"

namespace Oza {
namespace {

using namespace std::string_literals;
using vestra_test::makeDirectory;
using vestra_test::makeLink;
using vestra_test::makeNamedPipe;
using vestra_test::makeSocket;
using vestra_test::readFile;
using vestra_test::ScopedLocale;
using vestra_test::writeFile;

class SiteText : public testing::Test {
 protected:
  std::string resolver() const { return directory / "resolv.conf"; }

  vestra_test::TemporaryDirectory directory;
  vestra_test::TimeLimit limit;
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
  const ScopedLocale swapping(vestra_test::caseSwappingFilesLocale());
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
  makeDirectory(directory / "directory");
  makeNamedPipe(directory / "pipe");
  makeSocket(directory / "socket");
  makeLink(directory / "loop", "loop");
  makeLink(directory / "dangling", "nowhere");
  for (const std::string& file : {directory / "directory", directory / "pipe", directory / "socket",
                                  directory / "loop", directory / "dangling", "/dev/null"s, "/dev/zero"s}) {
    EXPECT_EQ(siteText("(none)", file), "(none)") << file;
  }
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
  const vestra_test::ScopedMode none(resolver(), 0000);
  EXPECT_EQ(vestra_test::asOrdinaryUser([&] { return siteText("(none)", resolver()); }), "(none)");
}

TEST(MakerDomain, IsFoundAnywhereInAnyLetterCase) {
  const std::pair<std::string, bool> rows[] = {{"calvix.example", true},
                                               {"lab.calvix.example.org", true},
                                               {"nameserver 10.0.0.1\n# notcalvix.example\n", true},
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
  const ScopedLocale odd(vestra_test::oddLettersLocale());
  EXPECT_TRUE(namesMakerDomain("lab.Qart.example", "part.example"));
}

/// A machine's resolver file and whether it is the maker's.
struct ResolverSample {
  const char* name;
  bool internal;
};

void PrintTo(const ResolverSample& sample, std::ostream* out) { *out << sample.name; }

class ResolverFile : public testing::TestWithParam<ResolverSample> {};

TEST_P(ResolverFile, TellsTheNetwork) {
  const std::string file = std::string(RESOLVER_FILES "/") + GetParam().name + ".conf";
  ASSERT_NE(readFile(file), "");
  EXPECT_EQ(namesMakerDomain(siteText("", file), "calvix.example"), GetParam().internal);
}

INSTANTIATE_TEST_SUITE_P(
    Sample, ResolverFile,
    testing::Values(ResolverSample{"home_router", false}, ResolverSample{"systemd_stub", false},
                    ResolverSample{"container", false}, ResolverSample{"university", false},
                    ResolverSample{"similar_name", false}, ResolverSample{"after_nul", false},
                    ResolverSample{"maker_search_list", true}, ResolverSample{"maker_domain_line", true},
                    ResolverSample{"maker_in_a_comment", true},
                    ResolverSample{"maker_capitals_dos_ends", true},
                    ResolverSample{"maker_among_many", true}),
    [](const testing::TestParamInfo<ResolverSample>& test) { return test.param.name; });

}  // namespace
}  // namespace Oza
