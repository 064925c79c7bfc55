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

std::size_t lineOf(const Setting& setting) { return setting.isRoot() ? 1 : setting.getSourceLine(); }

class RulesReader {
 public:
  RulesReader(const std::string& fileName, const std::string& bytes) : file(fileName), text(bytes) {}

  std::vector<Rule> read() const {
    refuseIncludesAndNul();
    libconfig::Config config;
    parse(config);
    const std::string version = textOf(config.getRoot(), "version");
    if (version != "1.0") {
      fail(lineOf(config.lookup("version")),
           fmt::format("version {} is not known, only \"1.0\"", inQuotes(version)));
    }
    std::vector<Rule> rules;
    const Setting& clients = listOf(config.getRoot(), "clients");
    for (int i = 0; i < clients.getLength(); ++i) {
      const Setting& client = groupAt(clients, i, "client");
      const std::string name = textOf(client, "client_name");
      const Setting& list = listOf(client, "rules");
      for (int j = 0; j < list.getLength(); ++j) {
        rules.push_back(readRule(name, groupAt(list, j, "rule"), rules));
      }
    }
    return rules;
  }

 private:
  [[noreturn]] void fail(std::size_t line, const std::string& message) const {
    throw DiagnosedError(file, line, message);
  }

  /// libconfig would open the file that an include names, and would stop without an error at a NUL.
  void refuseIncludesAndNul() const {
    std::istringstream lines(text);
    std::string line;
    for (std::size_t number = 1; std::getline(lines, line); ++number) {
      const std::size_t begin = line.find_first_not_of(" \t\r");
      if (begin != std::string::npos && line.compare(begin, 8, "@include") == 0) {
        fail(number, "@include is not supported");
      }
      if (line.find('\0') != std::string::npos) {
        fail(number, "the rules hold a NUL byte");
      }
    }
  }

  void parse(libconfig::Config& config) const {
    try {
      config.readString(text);
    } catch (const libconfig::ParseException& error) {
      fail(static_cast<std::size_t>(error.getLine()), error.getError());
    }
  }

  const Setting& member(const Setting& group, const char* name, Setting::Type type, const char* kind) const {
    if (!group.exists(name)) {
      fail(lineOf(group), fmt::format("setting {} is missing", name));
    }
    const Setting& setting = group[name];
    if (setting.getType() != type) {
      fail(lineOf(setting), fmt::format("setting {} is not {}", name, kind));
    }
    return setting;
  }

  std::string textOf(const Setting& group, const char* name) const {
    return member(group, name, Setting::TypeString, "a text in double quotes").c_str();
  }

  const Setting& listOf(const Setting& group, const char* name) const {
    return member(group, name, Setting::TypeList, "a list in parentheses");
  }

  const Setting& groupAt(const Setting& list, int index, const char* what) const {
    const Setting& entry = list[index];
    if (!entry.isGroup()) {
      fail(lineOf(entry), fmt::format("a {} is not a group in braces", what));
    }
    return entry;
  }

  Rule readRule(const std::string& client, const Setting& rule, const std::vector<Rule>& before) const {
    const std::string context = textOf(rule, "context");
    const std::string style = textOf(rule, "html_format");
    const bool isEnvironment = style == nameOf(HtmlStyle::UserEnvironment);
    if (!isEnvironment && style != nameOf(HtmlStyle::Statistics)) {
      fail(lineOf(rule["html_format"]), fmt::format("html_format {} is not known", inQuotes(style)));
    }
    const auto isSame = [&](const Rule& other) { return other.client == client && other.context == context; };
    if (std::any_of(before.begin(), before.end(), isSame)) {
      fail(lineOf(rule["context"]), fmt::format("client {} has another rule for context {} already",
                                                inQuotes(client), inQuotes(context)));
    }
    return {client, context, textOf(rule, "xml_map"), textOf(rule, "html_map"),
            isEnvironment ? HtmlStyle::UserEnvironment : HtmlStyle::Statistics};
  }

  const std::string& file;
  const std::string& text;
};

}  // namespace

const char* nameOf(HtmlStyle style) {
  return style == HtmlStyle::UserEnvironment ? "UserEnvStyle" : "FennoxStatsStyle";
}

std::vector<Rule> parseRules(const std::string& file, const std::string& text) {
  return RulesReader(file, text).read();
}

}  // namespace vestra::design_tool
