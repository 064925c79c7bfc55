#ifndef VESTRA_TESTKIT_HOST_RUN_H
#define VESTRA_TESTKIT_HOST_RUN_H

#include <cstdint>
#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

#include <vestra/vestra.h>

/// Marks what the test kit's library offers.
#define VESTRA_TESTKIT_EXPORT __attribute__((visibility("default")))

namespace vestra::testkit {

/// One item of a report. All texts are byte strings.
struct Item {
  std::string client;
  /// The section's path as the design tool reads it: "kelvo\usage", one backslash.
  std::string context;
  std::string key;
  std::string value;
};

VESTRA_TESTKIT_EXPORT bool operator==(const Item& a, const Item& b);

/// The path of a section as the design tool reads it.
VESTRA_TESTKIT_EXPORT std::string contextOf(Oza::Vestra::SectionType section);

/// How the rules file maps one context.
struct Rule {
  std::string client;
  std::string context;
  std::string xmlMap;
  std::string htmlMap;
  std::string htmlFormat;
};

/// An item that the design tool would not read as it was written, and why.
struct Hazard {
  Item item;
  std::string reason;
};

/// What the stand-in design tool made of a script: one report in the outbox.
struct Report {
  /// Its folder in the outbox, with the script, the rules and both reports in it.
  std::string folder;
  std::string clientId;
  std::string registrationId;
  std::string intro;
  /// The clients that the script registered, in order.
  std::vector<std::string> clients;
  /// As Tcl read them, in order.
  std::vector<Item> items;
  std::vector<Rule> rules;
  std::vector<std::string> warnings;
};

/// One command line that the library gave to the shell.
struct ToolRun {
  /// Byte for byte.
  std::string commandLine;
  /// As `system` returned it; nothing when the host ended before the tool did.
  std::optional<int> status;
  /// What it wrote: on the host's standard output and error, or into the lab
  /// tool's log.
  std::string output;
  /// The script and the rules file as they lay there when it was started.
  std::string script;
  std::string rulesFile;
};

/// An exception that left the host's code.
struct Exception {
  /// The type's name as C++ writes it, "std::logic_error".
  std::string type;
  std::string text;
};

/// The per-user settings file.
struct Settings {
  /// Byte for byte.
  std::string text;
  /// The value of the first line "RandomID=…" that counts; empty without one.
  std::string randomId;
};

/// The project's identity file. What a line does not say is nothing.
struct Identity {
  /// Byte for byte.
  std::string text;
  /// Seconds since the epoch; 0 for never.
  std::optional<std::int64_t> lastSendTimeDefault;
  std::optional<std::int64_t> lastSendTimeType1;
  /// The number of the next attempt.
  std::optional<std::uint64_t> iteration;
  std::optional<bool> orbeloFlow;
  std::optional<std::string> projectId;
};

/// All that one host process left.
///
/// A host that ended well gave an answer or let an exception out; otherwise a
/// signal ended it (SIGKILL when its time was up), or it left by itself.
struct HostRun {
  /// What `send` gave, or the host's code.
  std::optional<bool> answer;
  std::optional<Exception> exception;
  std::optional<int> signal;
  /// Nothing when a signal ended the process.
  std::optional<int> exitStatus;
  bool timedOut = false;

  /// What the host wrote on its standard output, the tool's part taken out.
  std::string output;
  /// The same for its standard error.
  std::string errorOutput;

  std::vector<ToolRun> toolRuns;
  /// What the stand-in design tool reported in this run, in order.
  std::vector<Report> reports;
  /// The calls that the stand-in support library got, a line each.
  std::vector<std::string> supportCalls;

  /// The script and the rules file that were written last: as the tool found them
  /// or, when it was not started, as they lie in the project. Empty without one.
  std::string script;
  std::string rulesFile;
  /// The items in `script`, as the library wrote them.
  std::vector<Item> writtenItems;

  /// As they stood at the run's end; nothing for a missing file.
  std::optional<Settings> settings;
  std::optional<Identity> identity;

  /// The last report's; nothing when none was made.
  VESTRA_TESTKIT_EXPORT const Report* report() const;

  /// The values of a section's key as the design tool read them or, when there is
  /// no report, as they were written.
  VESTRA_TESTKIT_EXPORT std::vector<std::string> values(Oza::Vestra::SectionType section,
                                                        const std::string& key) const;

  /// The items that the design tool would not read as they were written, each with
  /// the reason in words. An item whose own text imitates the end of a script line
  /// is judged by what stands before that.
  VESTRA_TESTKIT_EXPORT std::vector<Hazard> hazards() const;
};

/// A readable account of the run: how it ended, what was run, what was reported.
VESTRA_TESTKIT_EXPORT std::ostream& operator<<(std::ostream& out, const HostRun& run);
VESTRA_TESTKIT_EXPORT std::ostream& operator<<(std::ostream& out, const Item& item);
VESTRA_TESTKIT_EXPORT std::ostream& operator<<(std::ostream& out, const Hazard& hazard);

}  // namespace vestra::testkit

#endif
