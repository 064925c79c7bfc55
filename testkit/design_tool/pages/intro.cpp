#include "design_tool/pages/intro.h"

#include <algorithm>
#include <string_view>
#include <vector>

#include "reading/html_text.h"

namespace vestra::design_tool {

using reading::escapedForHtml;

namespace {

struct Part {
  enum class Kind { Text, HeadingBegin, HeadingEnd, LineBreak } kind;
  std::string_view text;
};

struct Tag {
  std::string_view spelling;
  Part::Kind kind;
};

constexpr Tag TAGS[] = {
    {"<h3>", Part::Kind::HeadingBegin}, {"</h3>", Part::Kind::HeadingEnd}, {"<br>", Part::Kind::LineBreak}};

char lower(char letter) {
  return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

bool startsWith(std::string_view text, std::string_view tag) {
  return text.size() >= tag.size() &&
         std::equal(tag.begin(), tag.end(), text.begin(), [](char a, char b) { return a == lower(b); });
}

const Tag* tagAt(std::string_view text) {
  const auto* const tag = std::find_if(std::begin(TAGS), std::end(TAGS), [&](const Tag& candidate) {
    return startsWith(text, candidate.spelling);
  });
  return tag == std::end(TAGS) ? nullptr : tag;
}

std::vector<Part> partsOf(std::string_view intro) {
  std::vector<Part> parts;
  std::size_t textBegin = 0;
  for (std::size_t i = 0; i < intro.size();) {
    const Tag* const tag = tagAt(intro.substr(i));
    if (tag == nullptr) {
      ++i;
      continue;
    }
    if (i > textBegin) {
      parts.push_back({Part::Kind::Text, intro.substr(textBegin, i - textBegin)});
    }
    parts.push_back({tag->kind, intro.substr(i, tag->spelling.size())});
    i += tag->spelling.size();
    textBegin = i;
  }
  if (textBegin < intro.size()) {
    parts.push_back({Part::Kind::Text, intro.substr(textBegin)});
  }
  return parts;
}

/// Opens and closes the heading only where that leaves it balanced; any other tag is shown as it is spelled.
std::string renderPart(const Part& part, bool& isHeadingOpen) {
  if (part.kind == Part::Kind::LineBreak) {
    return "<br>";
  }
  if (part.kind == Part::Kind::HeadingBegin && !isHeadingOpen) {
    isHeadingOpen = true;
    return "<h1>";
  }
  if (part.kind == Part::Kind::HeadingEnd && isHeadingOpen) {
    isHeadingOpen = false;
    return "</h1>";
  }
  return escapedForHtml(part.text);
}

std::string trimmed(const std::string& text) {
  const std::size_t begin = text.find_first_not_of(" \t\r\n");
  if (begin == std::string::npos) {
    return "";
  }
  return text.substr(begin, text.find_last_not_of(" \t\r\n") - begin + 1);
}

}  // namespace

std::string renderIntro(const std::string& intro) {
  std::string html;
  bool isHeadingOpen = false;
  for (const Part& part : partsOf(intro)) {
    html += renderPart(part, isHeadingOpen);
  }
  return isHeadingOpen ? html + "</h1>" : html;
}

std::string titleOf(const std::string& intro) {
  std::string title;
  for (const Part& part : partsOf(intro)) {
    title += part.kind == Part::Kind::Text ? part.text : " ";
  }
  const std::string words = trimmed(title);
  return words.empty() ? "Usage Report" : words;
}

}  // namespace vestra::design_tool
