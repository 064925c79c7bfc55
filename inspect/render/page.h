#ifndef VESTRA_INSPECT_RENDER_PAGE_H
#define VESTRA_INSPECT_RENDER_PAGE_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "checks/finding.h"
#include "render/redaction.h"

namespace vestra::inspect {

/// A text for a terminal or a ticket: 80 columns wide, long lines folded and nothing cut,
/// each byte visible that a terminal would obey or not show.
class Page {
 public:
  /// @param hasColours  Whether headings and levels are marked for a terminal.
  Page(bool hasColours, const Redaction& redact) : colours(hasColours), redaction(redact) {}

  /// The first line: the answer.
  void verdict(const std::string& text);
  void heading(const std::string& text);
  /// Where the texts of the rows that follow begin.
  void setTextIndent(std::size_t columns) { textIndent = columns; }
  /// A label at the left, the text beside it; an empty label continues the row before.
  void row(const std::string& label, const std::string& text);
  /// Text at an indent.
  void paragraph(std::size_t indent, const std::string& text);
  /// A shell command, folded so that it can still be copied.
  void command(const std::string& text);
  /// A finding's level and identifier.
  void level(Level which, const std::string& id);
  void blank() { written += '\n'; }

  const std::string& text() const { return written; }
  bool isRedacted() const { return redaction.isOn(); }

 private:
  std::string marked(const char* code, const std::string& text) const;
  std::vector<std::string> foldedForm(const std::string& text, std::size_t width) const;

  bool colours;
  const Redaction& redaction;
  std::size_t textIndent = 17;
  std::string written;
};

/// "1 run", "2 runs"
std::string counted(std::uint64_t number, const std::string& what);

/// The text in lines of at most `width` columns, broken at blanks or else behind
/// slashes where there are any.
std::vector<std::string> folded(const std::string& text, std::size_t width);

}  // namespace vestra::inspect

#endif
