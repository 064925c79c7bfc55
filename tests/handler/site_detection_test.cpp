#include "handler/site_detection.h"

#include <gtest/gtest.h>

#include <string>

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

TEST_F(SiteText, SiteTextIsTheDomainNameWhereItSaysSomething) {
  writeFile(resolver(), "search calvix.example\n");
  EXPECT_EQ(siteText("lab.example.org", resolver()), "lab.example.org");
  EXPECT_EQ(siteText(" ", resolver()), " ");
  EXPECT_EQ(siteText("none", resolver()), "none");
  EXPECT_EQ(siteText("(none) ", resolver()), "(none) ");
}

TEST_F(SiteText, SiteTextIsTheResolverFileWithoutADomainName) {
  writeFile(resolver(), "search calvix.example\nnameserver 10.0.0.1\n");
  EXPECT_EQ(siteText("", resolver()), "search calvix.example\nnameserver 10.0.0.1\n");
}

TEST_F(SiteText, SiteTextIsTheResolverFileWhereTheDomainNameIsNoneInAnyLetterCase) {
  writeFile(resolver(), "text");
  EXPECT_EQ(siteText("(none)", resolver()), "text");
  EXPECT_EQ(siteText("(NONE)", resolver()), "text");
  EXPECT_EQ(siteText("(NoNe)", resolver()), "text");
}

TEST_F(SiteText, SiteTextEndsAtTheResolverFilesFirstNul) {
  writeFile(resolver(), "nameserver 10.0.0.1\n\0search calvix.example\n"s);
  EXPECT_EQ(siteText("", resolver()), "nameserver 10.0.0.1\n");
}

TEST_F(SiteText, SiteTextOfAnEmptyResolverFileIsEmpty) {
  writeFile(resolver(), "");
  EXPECT_EQ(siteText("", resolver()), "");
  EXPECT_EQ(siteText("(none)", resolver()), "");
}

TEST_F(SiteText, SiteTextOfALongResolverFileIsWhole) {
  const std::string longText = std::string(1048576, '#') + "\nsearch calvix.example\n";
  writeFile(resolver(), longText);
  EXPECT_EQ(siteText("", resolver()), longText);
}

TEST_F(SiteText, SiteTextKeepsTheResolverFilesBytesUnderTheHostsLocale) {
  writeFile(resolver(), "Search \xff Calvix\r\n");
  const ScopedLocale swapping(vestra_test::caseSwappingFilesLocale());
  EXPECT_EQ(siteText("", resolver()), "Search \xff Calvix\r\n");
}

TEST_F(SiteText, SiteTextIsTheDomainNameWhereTheResolverFileIsMissing) {
  EXPECT_EQ(siteText("", resolver()), "");
  EXPECT_EQ(siteText("(NONE)", resolver()), "(NONE)");
}

TEST_F(SiteText, SiteTextIsTheDomainNameWhereTheResolverFileIsNoRegularFile) {
  makeDirectory(directory / "directory");
  makeNamedPipe(directory / "pipe");
  makeSocket(directory / "socket");
  makeLink(directory / "loop", "loop");
  makeLink(directory / "dangling", "nowhere");
  EXPECT_EQ(siteText("(none)", directory / "directory"), "(none)");
  EXPECT_EQ(siteText("(none)", directory / "pipe"), "(none)");
  EXPECT_EQ(siteText("(none)", directory / "socket"), "(none)");
  EXPECT_EQ(siteText("(none)", directory / "loop"), "(none)");
  EXPECT_EQ(siteText("(none)", directory / "dangling"), "(none)");
  EXPECT_EQ(siteText("(none)", "/dev/null"), "(none)");
  EXPECT_EQ(siteText("(none)", "/dev/zero"), "(none)");
}

// The process's own memory is a regular file whose first byte cannot be read.
TEST_F(SiteText, SiteTextIsEmptyWhereReadingTheResolverFileFails) {
  EXPECT_EQ(siteText("(none)", "/proc/self/mem"), "");
}

TEST_F(SiteText, SiteTextFollowsALinkToTheResolverFile) {
  writeFile(directory / "stub-resolv.conf", "search calvix.example\n");
  makeLink(resolver(), "stub-resolv.conf");
  EXPECT_EQ(siteText("", resolver()), "search calvix.example\n");
}

TEST_F(SiteText, SiteTextIsTheDomainNameWhereTheResolverFileCannotBeRead) {
  writeFile(resolver(), "search calvix.example\n");
  const vestra_test::ScopedMode none(resolver(), 0000);
  EXPECT_EQ(vestra_test::asOrdinaryUser([&] { return siteText("(none)", resolver()); }), "(none)");
}

TEST(MakerDomain, MakersDomainIsFoundAnywhere) {
  EXPECT_TRUE(namesMakerDomain("calvix.example", "calvix.example"));
  EXPECT_TRUE(namesMakerDomain("lab.calvix.example.org", "calvix.example"));
  EXPECT_TRUE(namesMakerDomain("nameserver 10.0.0.1\n# notcalvix.example\n", "calvix.example"));
}

TEST(MakerDomain, MakersDomainIsFoundInAnyLetterCase) {
  EXPECT_TRUE(namesMakerDomain("LAB.CALVIX.EXAMPLE", "calvix.example"));
  EXPECT_TRUE(namesMakerDomain("Lab.CalVix.eXample", "calvix.example"));
}

TEST(MakerDomain, MakersDomainIsNotFoundInOtherText) {
  EXPECT_FALSE(namesMakerDomain("", "calvix.example"));
  EXPECT_FALSE(namesMakerDomain("calvix", "calvix.example"));
  EXPECT_FALSE(namesMakerDomain("calvix.\nexample", "calvix.example"));
  EXPECT_FALSE(namesMakerDomain("calvix_example", "calvix.example"));
  EXPECT_FALSE(namesMakerDomain("(none)", "calvix.example"));
}

TEST(MakerDomain, MakersDomainIsFoundBehindANul) {
  EXPECT_TRUE(namesMakerDomain("a\0calvix.example"s, "calvix.example"));
}

TEST(MakerDomain, MakersDomainIsLoweredByTheGlobalLocale) {
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

TEST_P(ResolverFile, ResolverFileTellsTheNetwork) {
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
