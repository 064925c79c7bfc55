#include "command_line.h"

#include <algorithm>
#include <cstring>
#include <map>

#include <CLI/CLI.hpp>

#include "render/json_text.h"

namespace vestra::inspect {
namespace {

constexpr const char* DESCRIPTION =
    "Shows what Vestra keeps about you and a project, when the next report goes\n"
    "and what it says, and what stands in its way. Without a command: status.";

constexpr const char* FOOTER =
    "Only rehearse starts anything; nothing else changes anything.\n"
    "Exit status: 0 answered, 1 doctor has findings, 2 wrong command line,\n"
    "3 something could not be looked at. rehearse: the program's own; 124 it\n"
    "leaked, 125 it cannot be rehearsed, 126 and 127 as env(1).";

const std::map<std::string, Product> PRODUCTS = {
    {"KELVO", Oza::Vestra::KELVO}, {"KELVO_ALT", Oza::Vestra::KELVO_ALT}, {"TAVLO", Oza::Vestra::TAVLO}};

void addOptions(CLI::App& app, Request& request) {
  app.add_option("--product", request.products, "KELVO, KELVO_ALT or TAVLO; else those with traces")
      ->transform(CLI::Transformer(PRODUCTS).description(""))
      ->expected(1)
      ->type_name("P");
  app.add_option("--home", request.home, "look with another home")->type_name("DIR");
  app.add_option("--env", request.environmentFile, "look with the environment in a file")->type_name("FILE");
  app.add_option("--host", request.host, "look as this program would")->type_name("FILE");
  app.add_option("--now", request.now, "take this for the present, in seconds")->type_name("SECONDS");
  app.add_flag("--json", request.asJson, "one document of schema vestra-inspect/1");
  app.add_flag("--redact", request.isRedacted, "marks for identifiers and names, for tickets");
  app.add_option("--fail-on", request.failOn, "doctor: problem, warning, note or never")
      ->check(CLI::IsMember({"problem", "warning", "note", "never"}).description(""))
      ->type_name("LEVEL");
  app.add_option("--color", request.colour, "auto, always or never")
      ->check(CLI::IsMember({"auto", "always", "never"}).description(""))
      ->type_name("WHEN");
}

void addCommand(CLI::App& app, const char* name, const char* description, Request& request) {
  CLI::App* command = app.add_subcommand(name, description);
  command->fallthrough();
  command->add_option("SUBJECT", request.subject,
                      name == std::string("report") ? "a project or a script" : "a project");
  command->callback([&request, name] { request.command = name; });
}

void addRehearsal(CLI::App& app, Request& request) {
  CLI::App* command =
      app.add_subcommand("rehearse", "run HOST and intercept its report: rehearse -- HOST ARG...");
  command->fallthrough();
  command->callback([&request] {
    request.command = "rehearse";
    if (request.program.empty()) {
      throw CLI::RequiredError("HOST");
    }
  });
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
  app.require_subcommand(0, 1);
  addOptions(app, line.request);
  addCommand(app, "status", "what is kept, what goes next, when and why", line.request);
  addCommand(app, "report", "the report on the disk, item by item", line.request);
  addCommand(app, "doctor", "what is wrong and how to mend it", line.request);
  addRehearsal(app, line.request);
  app.add_option("PROJECT", line.request.subject, "for status")->type_name("");
  const int own = takeProgram(count, words, line.request);
  try {
    app.parse(own, words);
  } catch (const CLI::Success&) {
    line.exitStatus = 0;
    line.output =
        count > 1 && std::string(words[count - 1]) == "--version" ? app.version() + "\n" : app.help();
  } catch (const CLI::ParseError& error) {
    const bool isRehearsal = app.got_subcommand("rehearse");
    line.exitStatus = isRehearsal ? 125 : 2;
    line.output = documentOf(error.what(), own, words, isRehearsal ? "rehearse" : line.request.command);
    line.complaint = "vestra-inspect: " + std::string(error.what()) + "\nTry --help.\n";
  }
  return line;
}

}  // namespace vestra::inspect
