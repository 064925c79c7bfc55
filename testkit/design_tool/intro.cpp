#include "intro.h"

#include <algorithm>
#include <string_view>
#include <vector>

#include "html_text.h"

namespace vestra::design_tool {

namespace {

struct Part {
  enum class Kind { Text, HeadingBegin, HeadingEnd, LineBreak } kind;
  std::string_view text;
};

struct Tag {
  std::string_view spelling;
  Part::Kind kind;
};

constexpr Tag kTags[] = {{"<h3>", Part::Kind::HeadingBegin}, {"</h3>", Part::Kind::HeadingEnd}, {"<br>", Part::Kind::LineBreak}};

char lower(char letter) {
  return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

bool startsWith(std::string_view text, std::string_view tag) {
  return text.size() >= tag.size() &&
         std::equal(tag.begin(), tag.end(), text.begin(), [](char a, char b) { return a == lower(b); });
}

const Tag* tagAt(std::string_view text) {
  const auto* const tag = std::find_if(std::begin(kTags), std::end(kTags),
                                       [&](const Tag& candidate) { return startsWith(text, candidate.spelling); });
  return tag == std::end(kTags) ? nullptr : tag;
}

std::vector<Part> partsOf(std::string_view intro) {
  std::vector<Part> parts;
  std::size_t text_begin = 0;
  for (std::size_t i = 0; i < intro.size();) {
    const Tag* const tag = tagAt(intro.substr(i));
    if (tag == nullptr) {
      ++i;
      continue;
    }
    if (i > text_begin) parts.push_back({Part::Kind::Text, intro.substr(text_begin, i - text_begin)});
    parts.push_back({tag->kind, intro.substr(i, tag->spelling.size())});
    i += tag->spelling.size();
    text_begin = i;
  }
  if (text_begin < intro.size()) parts.push_back({Part::Kind::Text, intro.substr(text_begin)});
  return parts;
}

/// Opens and closes the heading only where that leaves it balanced; any other tag is shown as it is spelled.
std::string renderPart(const Part& part, bool& is_heading_open) {
  if (part.kind == Part::Kind::LineBreak) return "<br>";
  if (part.kind == Part::Kind::HeadingBegin && !is_heading_open) {
    is_heading_open = true;
    return "<h1>";
  }
  if (part.kind == Part::Kind::HeadingEnd && is_heading_open) {
    is_heading_open = false;
    return "</h1>";
  }
  return escapedForHtml(part.text);
}

std::string trimmed(const std::string& text) {
  const std::size_t begin = text.find_first_not_of(" \t\r\n");
  if (begin == std::string::npos) return "";
  return text.substr(begin, text.find_last_not_of(" \t\r\n") - begin + 1);
}

}  // namespace

std::string renderIntro(const std::string& intro) {
  std::string html;
  bool is_heading_open = false;
  for (const Part& part : partsOf(intro)) html += renderPart(part, is_heading_open);
  return is_heading_open ? html + "</h1>" : html;
}

std::string titleOf(const std::string& intro) {
  std::string title;
  for (const Part& part : partsOf(intro)) title += part.kind == Part::Kind::Text ? part.text : " ";
  const std::string words = trimmed(title);
  return words.empty() ? "Usage Report" : words;
}

}  // namespace vestra::design_tool
