#include "handler/vestra_handler.h"

#include <boost/filesystem/exception.hpp>

#include <cstdint>

#include "support/test.h"

namespace Oza {
namespace {

TEST(Handler, StartsAsTheSimulatorWithSixEmptyContexts) {
  VestraHandler handler;
  EXPECT_EQ(handler.getProductType(), Vestra::KELVO);
  EXPECT_EQ(handler.getVestraCommandTcl(), "kelvo_vestra.tcl");
  EXPECT_EQ(handler.getLogFileName(), "/vestra/tavlo_vestra.log");
  for (unsigned int i = 0; i < 6; ++i) {
    EXPECT_TRUE(handler.isParentEmpty(i)) << "context " << i;
  }
}

TEST(Handler, FilesAnItemUnderOneContextOnly) {
  for (unsigned int section = 0; section < 6; ++section) {
    VestraHandler handler;
    handler.addData("", "", static_cast<Vestra::SectionType>(section));
    for (unsigned int i = 0; i < 6; ++i) {
      EXPECT_EQ(handler.isParentEmpty(i), i != section) << "section " << section << ", context " << i;
    }
  }
}

TEST(Handler, OrdersTheFactsOfTheFirstContextOnly) {
  VestraHandler handler;
  handler.uniqueAndReorderData();
  for (unsigned int i = 0; i < 6; ++i) {
    EXPECT_EQ(handler.isParentEmpty(i), i != 0) << "context " << i;
  }
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

TEST(Handler, FreesItsContextsInTheirOrder) {
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

TEST(Handler, TakesAFurtherContextBehindItsSix) {
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

TEST(ProductsNames, AreThoseOfTheSimulatorOrTheLabTool) {
  const std::pair<std::uint32_t, bool> rows[] = {{0U, true},  {1U, true},           {2U, false},
                                                 {7U, false}, {0x80000000U, false}, {0xFFFFFFFFU, false}};
  for (const auto& [type, isSimulator] : rows) {
    SCOPED_TRACE(type);
    VestraHandler handler;
    handler.setProductType(static_cast<Vestra::ProductType>(type));
    const std::string name = isSimulator ? "kelvo" : "tavlo";
    EXPECT_EQ(handler.isKelvo(), isSimulator);
    EXPECT_EQ(handler.getProductType(), type);
    EXPECT_EQ(handler.getProductName(), isSimulator ? "KELVO" : "TAVLO");
    EXPECT_EQ(handler.getProductNameL(), name);
    EXPECT_EQ(handler.getVestraCommandTcl(), name + "_vestra.tcl");
    EXPECT_EQ(handler.getVestraWdm(), "usage_statistics_ext_" + name + ".wdm");
    EXPECT_EQ(handler.getVestraXml(), "usage_statistics_ext_" + name + ".xml");
    EXPECT_EQ(handler.getVestraHtml(), "usage_statistics_ext_" + name + ".html");
    EXPECT_EQ(handler.getLogFileName(), "/vestra/tavlo_vestra.log");
  }
}

TEST(ProjectDirectory, IsMadeAbsoluteAndKeptOtherwise) {
  const TemporaryDirectory directory;
  const std::pair<std::string, std::string> rows[] = {{"/a/b", "/a/b"},
                                                      {"/a/b/", "/a/b/"},
                                                      {"/a//./../b c", "/a//./../b c"},
                                                      {"/\xc3\xa9\xff", "/\xc3\xa9\xff"},
                                                      {"proj", directory / "proj"},
                                                      {".", directory / "."},
                                                      {"", directory.path()}};
  VestraHandler handler;
  for (const auto& [given, stored] : rows) {
    {
      const ScopedCurrentDirectory there(directory.path());
      handler.setProjectDirectory(given);
    }
    EXPECT_EQ(handler.getLogFileName(), stored + "/vestra/tavlo_vestra.log") << given;
  }
  EXPECT_EQ(namesIn(directory.path()), std::vector<std::string>{});
}

TEST(ProjectDirectory, WithoutACurrentDirectoryThrowsAFilesystemError) {
  const TemporaryDirectory directory;
  makeDirectory(directory / "gone");
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
