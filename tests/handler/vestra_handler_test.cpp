#include "handler/vestra_handler.h"

#include <gtest/gtest.h>

#include <boost/filesystem/exception.hpp>

#include <string>
#include <vector>

#include "support/child_process.h"
#include "support/files.h"
#include "support/scoped_current_directory.h"
#include "support/special_files.h"
#include "support/temporary_directory.h"

namespace Oza {
namespace {

using vestra_test::ScopedCurrentDirectory;
using vestra_test::TemporaryDirectory;

TEST(Handler, HandlerStartsWithSixEmptyContexts) {
  VestraHandler handler;
  for (unsigned int i = 0; i < 6; ++i) {
    EXPECT_TRUE(handler.isParentEmpty(i)) << "context " << i;
  }
}

TEST(Handler, HandlerStartsAsTheSimulatorWithoutAProject) {
  VestraHandler handler;
  EXPECT_EQ(handler.getProductType(), Vestra::KELVO);
  EXPECT_EQ(handler.getVestraCommandTcl(), "kelvo_vestra.tcl");
  EXPECT_EQ(handler.getLogFileName(), "/vestra/tavlo_vestra.log");
}

TEST(Handler, HandlerFilesAnItemUnderOneContextOnly) {
  for (unsigned int section = 0; section < 6; ++section) {
    VestraHandler handler;
    handler.addData("k", "v", static_cast<Vestra::SectionType>(section));
    for (unsigned int i = 0; i < 6; ++i) {
      EXPECT_EQ(handler.isParentEmpty(i), i != section) << "section " << section << ", context " << i;
    }
  }
}

TEST(Handler, HandlerFilesAnItemWithEmptyKeyAndValue) {
  VestraHandler handler;
  handler.addData("", "", Vestra::KELVO_USAGE);
  EXPECT_FALSE(handler.isParentEmpty(Vestra::KELVO_USAGE));
}

/// A context or an item that notes its end.
template <typename Node>
class Noted : public Node {
 public:
  template <typename... Arguments>
  Noted(std::string name, std::string& ends, Arguments... arguments)
      : Node(arguments...), ownName(std::move(name)), endsSeen(ends) {}
  ~Noted() override { endsSeen += ownName; }

 private:
  std::string ownName;
  std::string& endsSeen;
};

TEST(Handler, HandlerOwnsTheNodesThatAreFiled) {
  std::string ends;
  VestraParentData context("c", "p", true);
  {
    VestraHandler handler;
    auto* item = new Noted<VestraAddData>("item ", ends, "k", "v", &context);
    handler.addData(item, Vestra::TAVLO_USAGE);
    EXPECT_FALSE(handler.isParentEmpty(Vestra::TAVLO_USAGE));
    EXPECT_EQ(ends, "");
  }
  EXPECT_EQ(ends, "item ");
}

TEST(Handler, HandlerFreesItsContextsInTheirOrder) {
  std::string ends;
  VestraParentData context("c", "p", true);
  {
    VestraHandler handler;
    for (unsigned int section : {5U, 3U, 0U, 4U, 1U, 2U}) {
      handler.addData(new Noted<VestraAddData>(std::to_string(section), ends, "k", "v", &context),
                      static_cast<Vestra::SectionType>(section));
    }
  }
  EXPECT_EQ(ends, "012345");
}

TEST(Handler, HandlerTakesAFurtherContextBehindItsSix) {
  std::string ends;
  {
    VestraHandler handler;
    handler.addData(new Noted<VestraParentData>("further", ends, "c", "p", true));
    EXPECT_TRUE(handler.isParentEmpty(6));
    handler.addData("k", "v", static_cast<Vestra::SectionType>(6));
    EXPECT_FALSE(handler.isParentEmpty(6));
  }
  EXPECT_EQ(ends, "further");
}

class ProductProfile : public testing::TestWithParam<std::uint32_t> {
 protected:
  ProductProfile() { handler.setProductType(static_cast<Vestra::ProductType>(GetParam())); }

  VestraHandler handler;
};

class SimulatorProfile : public ProductProfile {};

TEST_P(SimulatorProfile, SimulatorHasTheSimulatorsNames) {
  EXPECT_TRUE(handler.isKelvo());
  EXPECT_EQ(handler.getProductType(), GetParam());
  EXPECT_EQ(handler.getProductName(), "KELVO");
  EXPECT_EQ(handler.getProductNameL(), "kelvo");
  EXPECT_EQ(handler.getVestraCommandTcl(), "kelvo_vestra.tcl");
  EXPECT_EQ(handler.getVestraWdm(), "usage_statistics_ext_kelvo.wdm");
  EXPECT_EQ(handler.getVestraXml(), "usage_statistics_ext_kelvo.xml");
  EXPECT_EQ(handler.getVestraHtml(), "usage_statistics_ext_kelvo.html");
}

TEST_P(SimulatorProfile, SimulatorHasTheLabToolsLog) {
  EXPECT_EQ(handler.getLogFileName(), "/vestra/tavlo_vestra.log");
}

INSTANTIATE_TEST_SUITE_P(Product, SimulatorProfile, testing::Values(0U, 1U));

class LabToolProfile : public ProductProfile {};

TEST_P(LabToolProfile, LabToolHasTheLabToolsNames) {
  EXPECT_FALSE(handler.isKelvo());
  EXPECT_EQ(handler.getProductType(), GetParam());
  EXPECT_EQ(handler.getProductName(), "TAVLO");
  EXPECT_EQ(handler.getProductNameL(), "tavlo");
  EXPECT_EQ(handler.getVestraCommandTcl(), "tavlo_vestra.tcl");
  EXPECT_EQ(handler.getVestraWdm(), "usage_statistics_ext_tavlo.wdm");
  EXPECT_EQ(handler.getVestraXml(), "usage_statistics_ext_tavlo.xml");
  EXPECT_EQ(handler.getVestraHtml(), "usage_statistics_ext_tavlo.html");
  EXPECT_EQ(handler.getLogFileName(), "/vestra/tavlo_vestra.log");
}

INSTANTIATE_TEST_SUITE_P(Product, LabToolProfile,
                         testing::Values(2U, 3U, 7U, 0x7FFFFFFFU, 0x80000000U, 0xFFFFFFFFU));

TEST(ProjectDirectory, ProjectDirectoryKeepsAnAbsoluteDirectory) {
  VestraHandler handler;
  handler.setProjectDirectory("/a/b");
  EXPECT_EQ(handler.getLogFileName(), "/a/b/vestra/tavlo_vestra.log");
}

TEST(ProjectDirectory, ProjectDirectoryKeepsASlashAtTheEnd) {
  VestraHandler handler;
  handler.setProjectDirectory("/a/b/");
  EXPECT_EQ(handler.getLogFileName(), "/a/b//vestra/tavlo_vestra.log");
}

TEST(ProjectDirectory, ProjectDirectoryKeepsDotsAndDoubledSlashes) {
  VestraHandler handler;
  handler.setProjectDirectory("/a//./../b c");
  EXPECT_EQ(handler.getLogFileName(), "/a//./../b c/vestra/tavlo_vestra.log");
}

TEST(ProjectDirectory, RelativeOneIsResolvedAtTheTimeOfTheCall) {
  const TemporaryDirectory directory;
  VestraHandler handler;
  {
    const ScopedCurrentDirectory there(directory.path());
    handler.setProjectDirectory("proj");
  }
  EXPECT_EQ(handler.getLogFileName(), directory / "proj/vestra/tavlo_vestra.log");
}

TEST(ProjectDirectory, DotStaysInTheText) {
  const TemporaryDirectory directory;
  const ScopedCurrentDirectory there(directory.path());
  VestraHandler handler;
  handler.setProjectDirectory(".");
  EXPECT_EQ(handler.getLogFileName(), directory / "./vestra/tavlo_vestra.log");
}

TEST(ProjectDirectory, EmptyOneIsTheCurrentDirectory) {
  const TemporaryDirectory directory;
  const ScopedCurrentDirectory there(directory.path());
  VestraHandler handler;
  handler.setProjectDirectory("");
  EXPECT_EQ(handler.getLogFileName(), directory / "vestra/tavlo_vestra.log");
}

TEST(ProjectDirectory, ProjectDirectoryIsNeitherLookedAtNorMade) {
  const TemporaryDirectory directory;
  VestraHandler handler;
  handler.setProjectDirectory(directory / "missing");
  EXPECT_EQ(vestra_test::namesIn(directory.path()), std::vector<std::string>{});
}

TEST(ProjectDirectory, LastOneCounts) {
  VestraHandler handler;
  handler.setProjectDirectory("/a");
  handler.setProjectDirectory("/b");
  EXPECT_EQ(handler.getLogFileName(), "/b/vestra/tavlo_vestra.log");
}

TEST(ProjectDirectory, ProjectDirectoryKeepsBytesAbove127) {
  VestraHandler handler;
  handler.setProjectDirectory("/\xc3\xa9\xff");
  EXPECT_EQ(handler.getLogFileName(), "/\xc3\xa9\xff/vestra/tavlo_vestra.log");
}

TEST(ProjectDirectory, ProjectDirectoryWithoutACurrentDirectoryThrowsAFilesystemError) {
  const TemporaryDirectory directory;
  vestra_test::makeDirectory(directory / "gone");
  const ScopedCurrentDirectory there(directory / "gone");
  rmdir((directory / "gone").c_str());
  VestraHandler handler;
  handler.setProductType(Vestra::TAVLO);
  EXPECT_THROW(handler.setProjectDirectory("relative"), boost::filesystem::filesystem_error);
  EXPECT_THROW(handler.setProjectDirectory("/absolute"), boost::filesystem::filesystem_error);
  EXPECT_EQ(handler.getLogFileName(), "/vestra/tavlo_vestra.log");
}

}  // namespace
}  // namespace Oza
