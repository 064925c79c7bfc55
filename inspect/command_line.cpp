#include "command_line.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <set>

#include <CLI/CLI.hpp>

#include "facts/file_snapshot.h"
#include "reading/visible_text.h"
#include "render/json_text.h"

namespace vestra::inspect {
namespace {

constexpr const char* DESCRIPTION =
    "Shows what Vestra keeps about you and a project, what is reported next and when,\n"
    "and why not.\n\n"
    "  status [PROJECT]       what is kept, what is reported next, and when\n"
    "  report [PROJECT|FILE]  the report on the disk, item by item\n"
    "  doctor [PROJECT]       what is wrong and how to fix it\n"
    "  list DIR...            a line for each project below the directories\n"
    "  rehearse -- HOST ARG...  run HOST and intercept its report";

constexpr const char* FOOTER =
    "Only rehearse runs the program; nothing else changes anything.\n"
    "Exit status: 0 answered, 1 doctor has findings, 2 invalid command line,\n"
    "3 something could not be looked at. rehearse: the program's own; 124 it\n"
    "leaked, 125 it cannot be rehearsed, 126 and 127 as env(1).";

const std::set<std::string> COMMANDS = {"status", "report", "doctor", "list", "rehearse"};

// Times that a calendar has.
constexpr std::int64_t LAST_SECOND = 253402300799;

const std::map<std::string, Product> PRODUCTS = {
    {"KELVO", Oza::Vestra::KELVO}, {"KELVO_ALT", Oza::Vestra::KELVO_ALT}, {"TAVLO", Oza::Vestra::TAVLO}};

void addOptions(CLI::App& app, Request& request, std::vector<std::string>& words) {
  app.add_option("WORDS", words, "")->type_name("");
  app.add_option("--product", request.products, "KELVO, KELVO_ALT or TAVLO; else those with traces")
      ->transform(CLI::CheckedTransformer(PRODUCTS).description(""))
      ->allow_extra_args(false)
      ->type_name("P");
  app.add_option("--home", request.home, "look with another home")->type_name("DIR");
  app.add_option("--env", request.environmentFile, "look with the environment in a file")->type_name("FILE");
  app.add_option("--host", request.host, "look as this program would")->type_name("FILE");
  app.add_option("--as", request.user, "test this user's rights (root only)")->type_name("USER");
  app.add_option("--now", request.now, "use this as the current time, in seconds")
      ->check(CLI::Range(std::int64_t{0}, LAST_SECOND).description(""))
      ->type_name("SECONDS");
  app.add_flag("--json", request.asJson, "one document of schema vestra-inspect/1");
  app.add_flag("--redact", request.isRedacted, "marks for identifiers and names, for tickets");
  app.add_option("--fail-on", request.failOn, "doctor: problem, warning, note or never")
      ->check(CLI::IsMember({"problem", "warning", "note", "never"}).description(""))
      ->type_name("LEVEL");
  app.add_option("--color", request.colour, "auto, always or never")
      ->check(CLI::IsMember({"auto", "always", "never"}).description(""))
      ->type_name("WHEN");
}

/// The first word is a command, or a project for `status`.
void takeWords(std::vector<std::string> words, Request& request) {
  if (!words.empty() && COMMANDS.count(words.front()) != 0) {
    request.command = words.front();
    words.erase(words.begin());
  } else if (!words.empty() && !lookAt(words.front()).exists() &&
             words.front().find('/') == std::string::npos) {
    throw CLI::ValidationError(words.front(), "no command and no directory");
  }
  const bool isList = request.command == "list";
  if (words.size() > 1 && !isList) {
    throw CLI::ValidationError(words[1], "one subject too many");
  }
  if (request.command == "rehearse" && (request.program.empty() || !words.empty())) {
    throw CLI::RequiredError("rehearse: -- HOST");
  }
  if (isList && words.empty()) {
    throw CLI::RequiredError("list: DIR");
  }
  request.subject = words.empty() ? "" : words.front();
  request.directories = std::move(words);
}

/// The program of a rehearsal, and its words, are nobody else's business: they stand behind
/// "--", or behind "rehearse" itself. @return How many words are before them.
int takeProgram(int count, const char* const* words, Request& request) {
  for (int i = 1; i + 1 < count; ++i) {
    const bool isRehearsal = std::strcmp(words[i], "rehearse") == 0;
    for (int end = i + 1; isRehearsal && end < count; ++end) {
      const bool isSeparator = std::strcmp(words[end], "--") == 0;
      if (isSeparator || (end == i + 1 && *words[end] != '-')) {
        request.program.assign(words + end + (isSeparator ? 1 : 0), words + count);
        return end;
      }
    }
  }
  return count;
}

/// A program that reads documents gets one here too.
std::string documentOf(const std::string& complaint, int count, const char* const* words,
                       const std::string& command) {
  const bool isWanted =
      std::any_of(words, words + count, [](const char* word) { return std::strcmp(word, "--json") == 0; });
  return isWanted ? failureDocument(command, complaint, Redaction()) : "";
}

}  // namespace

CommandLine readCommandLine(int count, const char* const* words) {
  CommandLine line;
  CLI::App app(DESCRIPTION, "vestra-inspect");
  app.footer(FOOTER);
  app.get_formatter()->column_width(20);
  app.set_version_flag("--version", "vestra-inspect " VESTRA_VERSION);
  std::vector<std::string> rest;
  addOptions(app, line.request, rest);
  const int own = takeProgram(count, words, line.request);
  try {
    app.parse(own, words);
    takeWords(rest, line.request);
  } catch (const CLI::Success&) {
    line.exitStatus = 0;
    line.output =
        count > 1 && std::string(words[count - 1]) == "--version" ? app.version() + "\n" : app.help();
  } catch (const CLI::ParseError& error) {
    const bool isRehearsal = std::find(rest.begin(), rest.end(), "rehearse") == rest.begin() && !rest.empty();
    line.exitStatus = isRehearsal ? 125 : 2;
    line.output = documentOf(error.what(), own, words, isRehearsal ? "rehearse" : line.request.command);
    line.complaint = "vestra-inspect: " + reading::forTerminal(error.what()) + "\nTry --help.\n";
  }
  return line;
}

}  // namespace vestra::inspect
