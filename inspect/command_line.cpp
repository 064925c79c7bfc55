#include "command_line.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <set>

#include <CLI/CLI.hpp>

#include "facts/file_snapshot.h"
#include "reading/visible_text.h"
#include "render/document.h"

namespace vestra::inspect {
namespace {

// Written out: what CLI11 makes of descriptions differs between its versions.
constexpr const char* HELP =
    R"(Usage: vestra-inspect [COMMAND] [OPTION]...

Shows what Vestra keeps about you and a project, what is reported next and
when, and why not.

  status [PROJECT]         what is kept, what is reported next, and when
  report [PROJECT|FILE]    the report on the disk, item by item
  doctor [PROJECT]         what is wrong and how to fix it
  list DIR...              a line for each project below the directories
  rehearse -- HOST ARG...  run HOST and intercept its report

  --product P              KELVO, KELVO_ALT or TAVLO; else those with traces
  --home DIR               look with another home
  --env FILE               look with the environment in a file
  --host FILE              look as this program would
  --as USER                test this user's rights (root only)
  --now SECONDS            use this as the current time, in seconds
  --json                   one document of schema vestra-inspect/1
  --redact                 marks for identifiers and names, for tickets
  --fail-on LEVEL          doctor: problem, warning, note or never
  --color WHEN             auto, always or never
  -h, --help, --version    print this, or the version, and exit

Only rehearse runs the program; nothing else changes anything.
Exit status: 0 answered, 1 doctor has findings, 2 invalid command line,
3 something could not be looked at. rehearse: the program's own; 124 it
leaked, 125 it cannot be rehearsed, 126 and 127 as env(1).
)";

const std::set<std::string> COMMANDS = {"status", "report", "doctor", "list", "rehearse"};

// Times that a calendar has.
constexpr std::int64_t LAST_SECOND = 253402300799;

const std::map<std::string, Product> PRODUCTS = {
    {"KELVO", Oza::Vestra::KELVO}, {"KELVO_ALT", Oza::Vestra::KELVO_ALT}, {"TAVLO", Oza::Vestra::TAVLO}};

void addOptions(CLI::App& app, Request& request, std::vector<std::string>& words) {
  app.add_option("WORDS", words);
  app.add_option("--product", request.products)
      ->transform(CLI::CheckedTransformer(PRODUCTS))
      ->allow_extra_args(false);
  app.add_option("--home", request.home);
  app.add_option("--env", request.environmentFile);
  app.add_option("--host", request.host);
  app.add_option("--as", request.user);
  app.add_option("--now", request.now)->check(CLI::Range(std::int64_t{0}, LAST_SECOND));
  app.add_flag("--json", request.asJson);
  app.add_flag("--redact", request.isRedacted);
  app.add_option("--fail-on", request.failOn)->check(CLI::IsMember({"problem", "warning", "note", "never"}));
  app.add_option("--color", request.colour)->check(CLI::IsMember({"auto", "always", "never"}));
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
  return isWanted ? dumped(failureDocument(command, complaint, Redaction())) + "\n" : "";
}

}  // namespace

CommandLine readCommandLine(int count, const char* const* words) {
  CommandLine line;
  CLI::App app("", "vestra-inspect");
  app.set_version_flag("--version", "vestra-inspect " VESTRA_VERSION);
  std::vector<std::string> rest;
  addOptions(app, line.request, rest);
  const int own = takeProgram(count, words, line.request);
  try {
    app.parse(own, words);
    takeWords(rest, line.request);
  } catch (const CLI::CallForVersion&) {
    line.exitStatus = 0;
    line.output = app.version() + "\n";
  } catch (const CLI::Success&) {
    line.exitStatus = 0;
    line.output = HELP;
  } catch (const CLI::ParseError& error) {
    const bool isRehearsal = std::find(rest.begin(), rest.end(), "rehearse") == rest.begin() && !rest.empty();
    line.exitStatus = isRehearsal ? 125 : 2;
    line.output = documentOf(error.what(), own, words, isRehearsal ? "rehearse" : line.request.command);
    line.complaint = "vestra-inspect: " + reading::forTerminal(error.what()) + "\nTry --help.\n";
  }
  return line;
}

}  // namespace vestra::inspect
