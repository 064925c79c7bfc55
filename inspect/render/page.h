#ifndef VESTRA_INSPECT_RENDER_PAGE_H
#define VESTRA_INSPECT_RENDER_PAGE_H

#include <cstddef>
#include <ostream>
#include <string>

namespace vestra::inspect {

/// A text for a terminal or a ticket: lines of at most 80 characters but for commands, long ones folded and
/// nothing cut, each byte visible that a terminal would obey or not show.
class Page {
 public:
  /// @param hasColours  Whether headings and levels are marked for a terminal.
  Page(std::ostream& output, bool hasColours) : out(output), colours(hasColours) {}

  void heading(const std::string& text);
  /// Where the texts of the rows that follow begin.
  void setTextIndent(std::size_t columns) { textIndent = columns; }
  /// A label at the left, the text beside it; an empty label continues the row before.
  void row(const std::string& label, const std::string& text);
  /// Text at an indent.
  void paragraph(std::size_t indent, const std::string& text);
  /// A shell command, in one line.
  void command(const std::string& text);
  /// A finding's level and identifier.
  void level(const std::string& level, const std::string& id);
  void blank() { out << '\n'; }

 private:
  std::string marked(const char* code, const std::string& text) const;

  std::ostream& out;
  bool colours;
  std::size_t textIndent = 17;
};

}  // namespace vestra::inspect

#endif
