#include "design_tool/pages/xml_report.h"

#include <gtest/gtest.h>

#include <pugixml.hpp>

#include "design_tool/script/script_evaluation.h"
#include "support/files.h"
#include "support/process.h"
#include "support/temporary_directory.h"
#include "testkit/design_tool/scripts.h"

namespace vestra::design_tool {
namespace {

const Rule MAPPED_USAGE{"kelvo", "kelvo\\usage", "mapped\\usage", "html", HtmlStyle::Statistics};

/// The document as another program reads it.
pugi::xml_document parsed(const std::string& xml) {
  pugi::xml_document document;
  EXPECT_TRUE(document.load_buffer(xml.data(), xml.size(), pugi::parse_default | pugi::parse_ws_pcdata));
  return document;
}

Report reportWith(const std::vector<Item>& items) {
  Report report;
  report.sections = {{"kelvo", "kelvo\\usage"}};
  report.items = items;
  return report;
}

TEST(XmlReport, HasASectionForEachRuleAndForEachContextWithoutOne) {
  const Rule empty{"kelvo", "kelvo\\options", "mapped\\options", "html", HtmlStyle::Statistics};
  const auto document = parsed(renderXml(reportWith({{0, "runs", "2", 3}}), {empty}));
  const pugi::xml_node section = document.child("usage_statistics").child("section");
  EXPECT_STREQ(section.attribute("name").value(), "mapped\\options");
  EXPECT_FALSE(section.child("item"));
  EXPECT_STREQ(section.next_sibling("section").attribute("context").value(), "kelvo\\usage");
  EXPECT_FALSE(section.next_sibling("section").attribute("name"));
}

TEST(XmlReport, MarkupWhiteSpaceAndLineFeedsComeBackExactly) {
  const std::string text = " <a href=\"x\">&amp; 'q'</a>\t]]> \n\n end\n ";
  const auto document = parsed(renderXml(reportWith({{0, text, text, 3}}), {MAPPED_USAGE}));
  const pugi::xml_node item = document.child("usage_statistics").child("section").child("item");
  EXPECT_EQ(item.attribute("key").value(), text);
  EXPECT_EQ(item.child_value(), text);
  EXPECT_FALSE(item.attribute("escaped"));
}

TEST(XmlReport, BytesThatXmlCannotHoldAreVisibleAndMarked) {
  const auto document =
      parsed(renderXml(reportWith({{0, "k\x01", "a\\" + std::string("\0\xFF\r", 3), 3}}), {MAPPED_USAGE}));
  const pugi::xml_node item = document.child("usage_statistics").child("section").child("item");
  EXPECT_STREQ(item.attribute("key").value(), "k\\x01");
  EXPECT_STREQ(item.child_value(), "a\\\\\\x00\\xff\\x0d");
  EXPECT_STREQ(item.attribute("escaped").value(), "key text");
}

TEST(XmlReport, EveryByteInEveryPlaceIsWellFormedForAnotherParser) {
  if (!vestra_test::isInstalled("xmllint")) {
    GTEST_SKIP() << "xmllint (Debian package libxml2-utils) is not installed";
  }
  std::string bytes;
  for (int value = 0; value < 256; ++value) {
    bytes += static_cast<char>(value);
  }
  Report report = reportWith({{0, bytes, bytes, 3}});
  report.vestraDir = report.transmission.intro = report.transmission.registrationId = bytes;
  report.registrations = {{bytes, 2}};
  report.sections = {{bytes, bytes}};
  Rule rule{bytes, bytes, bytes, bytes, HtmlStyle::Statistics};
  const vestra_test::TemporaryDirectory directory;
  for (const std::vector<Rule>& rules : {std::vector<Rule>{}, {rule}}) {
    vestra_test::writeFile(directory / "r.xml", renderXml(report, rules));
    const vestra_test::Outcome outcome = vestra_test::run({"xmllint", "--noout", directory / "r.xml"});
    EXPECT_EQ(outcome.status, 0) << outcome.err;
  }
}

}  // namespace
}  // namespace vestra::design_tool
