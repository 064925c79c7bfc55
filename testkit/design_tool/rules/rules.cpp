#include "design_tool/rules/rules.h"

#include <algorithm>
#include <sstream>

#include <fmt/format.h>
#include <libconfig.h++>

#include "design_tool/diagnosis/diagnostic.h"
#include "reading/visible_text.h"

namespace vestra::design_tool {

using reading::inQuotes;

namespace {

using libconfig::Setting;

constexpr const char* BLANKS = " \t\r";

/// Knows, from line to line, whether a comment or a text in quotes is open.
class CommentScanner {
 public:
  bool isOutside() const { return open == Open::Nothing; }

  void pass(const std::string& line) {
    for (std::size_t i = 0; i < line.size(); ++i) {
      if (isOutside() && (line[i] == '#' || line.compare(i, 2, "//") == 0)) {
        return;
      }
      i += lengthOfMark(line, i) - 1;
    }
  }

 private:
  enum class Open { Nothing, Comment, Text };

  std::size_t lengthOfMark(const std::string& line, std::size_t at) {
    if (open == Open::Text && line[at] == '\\') {
      return 2;
    }
    if (open != Open::Comment && line[at] == '"') {
      open = isOutside() ? Open::Text : Open::Nothing;
      return 1;
    }
    const char* const mark = isOutside() ? "/*" : "*/";
    if (open != Open::Text && line.compare(at, 2, mark) == 0) {
      open = isOutside() ? Open::Comment : Open::Nothing;
      return 2;
    }
    return 1;
  }

  Open open = Open::Nothing;
};

class RulesReader {
 public:
  RulesReader(const std::string& fileName, const std::string& bytes) : file(fileName), text(bytes) {}

  std::vector<Rule> read();

 private:
  [[noreturn]] void fail(std::size_t line, const std::string& message, const std::string& marked = "") const;
  [[noreturn]] void failAtValue(const Setting& setting, const std::string& message) const;
  std::string lineText(std::size_t line) const;
  void refuseWhatTheParserWouldFollow() const;
  void parse(libconfig::Config& config) const;
  const Setting& member(const Setting& group, const char* name, Setting::Type type, const char* kind) const;
  std::string textOf(const Setting& group, const char* name) const;
  const Setting& groupAt(const Setting& list, int index, const char* what) const;
  void checkVersion(const Setting& root) const;
  void readClient(const Setting& client);
  void readRule(const std::string& client, const Setting& rule);
  HtmlStyle styleOf(const Setting& rule) const;

  const std::string& file;
  const std::string& text;
  std::vector<Rule> rules;
};

std::size_t lineOf(const Setting& setting) { return setting.isRoot() ? 1 : setting.getSourceLine(); }

std::vector<Rule> RulesReader::read() {
  refuseWhatTheParserWouldFollow();
  libconfig::Config config;
  parse(config);
  checkVersion(config.getRoot());
  const Setting& clients = member(config.getRoot(), "clients", Setting::TypeList, "a list in parentheses");
  for (int i = 0; i < clients.getLength(); ++i) {
    readClient(groupAt(clients, i, "client"));
  }
  return std::move(rules);
}

/// Marks the last place of `marked` on the line; without one, where the line's text begins.
void RulesReader::fail(std::size_t line, const std::string& message, const std::string& marked) const {
  const std::string excerpt = lineText(line);
  const std::size_t found = marked.empty() ? std::string::npos : excerpt.rfind(marked);
  if (found != std::string::npos) {
    throw DiagnosedError({file, line, message, excerpt, found, marked.size()});
  }
  throw DiagnosedError({file, line, message, excerpt, excerpt.find_first_not_of(BLANKS), 0});
}

/// Marks the text that a setting has.
void RulesReader::failAtValue(const Setting& setting, const std::string& message) const {
  const std::string value = '"' + std::string(setting.c_str()) + '"';
  const std::string excerpt = lineText(lineOf(setting));
  const std::size_t name = std::min(excerpt.rfind(setting.getName()), excerpt.size());
  fail(lineOf(setting), message, excerpt.substr(name, excerpt.find(value, name) - name + value.size()));
}

std::string RulesReader::lineText(std::size_t line) const {
  std::istringstream lines(text);
  std::string found;
  for (std::size_t i = 0; i < line; ++i) {
    if (!std::getline(lines, found)) {
      return "";
    }
  }
  return found;
}

/// The parser would open the files that an include names, and would stop without a word at a NUL.
void RulesReader::refuseWhatTheParserWouldFollow() const {
  std::istringstream lines(text);
  std::string line;
  CommentScanner scanner;
  for (std::size_t number = 1; std::getline(lines, line); ++number) {
    const std::size_t begin = line.find_first_not_of(BLANKS);
    if (scanner.isOutside() && begin != std::string::npos && line.compare(begin, 8, "@include") == 0) {
      fail(number, "@include is not supported", "@include");
    }
    if (line.find('\0') != std::string::npos) {
      fail(number, "the rules hold a NUL byte", std::string(1, '\0'));
    }
    scanner.pass(line);
  }
}

void RulesReader::parse(libconfig::Config& config) const {
  try {
    config.readString(text);
  } catch (const libconfig::ParseException& error) {
    fail(static_cast<std::size_t>(error.getLine()), error.getError());
  }
}

const Setting& RulesReader::member(const Setting& group, const char* name, Setting::Type type,
                                   const char* kind) const {
  if (!group.exists(name)) {
    fail(lineOf(group), fmt::format("setting {} is missing", name));
  }
  const Setting& setting = group[name];
  if (setting.getType() != type) {
    fail(lineOf(setting), fmt::format("setting {} is not {}", name, kind), name);
  }
  return setting;
}

std::string RulesReader::textOf(const Setting& group, const char* name) const {
  return member(group, name, Setting::TypeString, "a text in double quotes").c_str();
}

const Setting& RulesReader::groupAt(const Setting& list, int index, const char* what) const {
  const Setting& entry = list[index];
  if (!entry.isGroup()) {
    fail(lineOf(entry), fmt::format("a {} is not a group in braces", what));
  }
  return entry;
}

void RulesReader::checkVersion(const Setting& root) const {
  const std::string version = textOf(root, "version");
  if (version == "1.0") {
    return;
  }
  failAtValue(root["version"], fmt::format("version {} is not known, only \"1.0\"", inQuotes(version)));
}

void RulesReader::readClient(const Setting& client) {
  const std::string name = textOf(client, "client_name");
  const Setting& list = member(client, "rules", Setting::TypeList, "a list in parentheses");
  for (int i = 0; i < list.getLength(); ++i) {
    readRule(name, groupAt(list, i, "rule"));
  }
}

void RulesReader::readRule(const std::string& client, const Setting& rule) {
  Rule read{client, textOf(rule, "context"), textOf(rule, "xml_map"), textOf(rule, "html_map"),
            styleOf(rule)};
  const auto isSame = [&](const Rule& other) {
    return other.client == client && other.context == read.context;
  };
  if (std::any_of(rules.begin(), rules.end(), isSame)) {
    failAtValue(rule["context"], fmt::format("client {} has another rule for context {} already",
                                             inQuotes(client), inQuotes(read.context)));
  }
  rules.push_back(std::move(read));
}

HtmlStyle RulesReader::styleOf(const Setting& rule) const {
  const std::string name = textOf(rule, "html_format");
  for (const HtmlStyle style : {HtmlStyle::UserEnvironment, HtmlStyle::Statistics}) {
    if (name == nameOf(style)) {
      return style;
    }
  }
  failAtValue(rule["html_format"], fmt::format("html_format {} is not known", inQuotes(name)));
}

}  // namespace

const char* nameOf(HtmlStyle style) {
  return style == HtmlStyle::UserEnvironment ? "UserEnvStyle" : "FennoxStatsStyle";
}

std::vector<Rule> parseRules(const std::string& file, const std::string& text) {
  return RulesReader(file, text).read();
}

}  // namespace vestra::design_tool
