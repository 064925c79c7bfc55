#include <fmt/format.h>
#include <fmt/ranges.h>

#include "checks/checks.h"
#include "reading/visible_text.h"
#include "render/answers.h"

namespace vestra::inspect {
namespace {

constexpr std::size_t ITEM_INDENT = 24;

std::string checksumOf(const ReportFacts& report) {
  if (report.checksum.empty()) {
    return "there is no checksum: the script ends before it";
  }
  if (!report.checksumHour) {
    return fmt::format("checksum {} does not agree: altered afterwards", report.checksum);
  }
  return fmt::format("checksum {} agrees with these items, written in the hour {}", report.checksum,
                     timeText(*report.checksumHour).substr(0, 13));
}

std::string registrationOf(const ReportFacts& report) {
  const bool isMarked = report.registration.rfind("VESTRA_TEST_", 0) == 0;
  return fmt::format("registration \"{}\"{}", report.registration,
                     isMarked ? ", marked as the maker's own machine" : "");
}

bool isMarked(const ReportedItem& item) { return item.hazard || item.isRepeated || !item.personal.empty(); }

/// What would show nothing is named.
std::string shown(const std::string& text) {
  return text.empty() ? "\"\"" : reading::isBlank(text) ? reading::namedBytes(text) : text;
}

/// Keys may be long; their values then stand below.
void writeItem(const ReportedItem& item, Page& page) {
  const reading::WrittenItem& written = item.written;
  page.row((isMarked(item) ? "! " : "  ") + shown(written.key),
           item.isIdentifier && page.isRedacted() ? "<" + written.key + ">" : shown(written.value));
  if (item.hazard) {
    page.row("", fmt::format("line {}: {}", written.line, *item.hazard));
  }
  if (item.isRepeated) {
    page.row("", "the same key again");
  }
  for (const std::string& what : item.personal) {
    page.row("", "holds " + what);
  }
}

void writeItems(const ReportFacts& report, Page& page) {
  std::string context;
  page.setTextIndent(ITEM_INDENT);
  for (const ReportedItem& item : report.items) {
    if (item.written.context != context) {
      context = item.written.context;
      page.heading(fmt::format("{} ({})", context, item.written.client));
    }
    writeItem(item, page);
  }
}

}  // namespace

std::string verdictOf(const ReportFacts& report) {
  return fmt::format("{}: number {} of {}, written {}{}", report.file.path,
                     report.projectFact("project_iteration"), report.product, timeText(report.file.modified),
                     report.isComplete ? "" : "; cut");
}

void writeReport(const ReportFacts& report, Page& page) {
  page.verdict(verdictOf(report));
  page.paragraph(
      0, "Kept by CALVIX_VESTRA_DEBUG_EXT, not due, or not handed over: the file alone does not tell.");
  page.paragraph(0, checksumOf(report));
  if (!report.registration.empty()) {
    page.paragraph(0, registrationOf(report));
  }
  page.blank();
  writeItems(report, page);
  page.blank();
  page.paragraph(0, fmt::format("{} items; {} reach the tool otherwise than written, or not at all.",
                                report.items.size(), report.hazardCount()));
  page.paragraph(0, "The host writes them, and Vestra hands them over as they are.");
}

}  // namespace vestra::inspect
