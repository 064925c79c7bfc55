#ifndef VESTRA_TESTKIT_HOST_RUN_H
#define VESTRA_TESTKIT_HOST_RUN_H

#include <cstddef>
#include <cstdint>
#include <ctime>
#include <iosfwd>
#include <map>
#include <optional>
#include <string>
#include <typeinfo>
#include <vector>

#include <vestra/vestra.h>

/// Marks what the test kit's library offers.
#define VESTRA_TESTKIT_EXPORT __attribute__((visibility("default")))

namespace vestra::testkit {

/// One item of a report. All texts are byte strings.
struct Item {
  /// The client that reports it: "kelvo" or "tavlo".
  std::string client;
  /// The section's path as the design tool reads it: "kelvo\usage", one backslash.
  std::string context;
  /// What the host called it.
  std::string key;
  /// What the host said of it.
  std::string value;
};

/// Whether all four texts are the same.
VESTRA_TESTKIT_EXPORT bool operator==(const Item& a, const Item& b);

/// The path of a section as the design tool reads it.
VESTRA_TESTKIT_EXPORT std::string contextOf(Oza::Vestra::SectionType section);

/// How the rules file maps one context.
struct Rule {
  /// The client whose context it is.
  std::string client;
  /// The context as an item names it.
  std::string context;
  /// The section of the XML report that the context's items go to.
  std::string xmlMap;
  /// The section of the HTML page.
  std::string htmlMap;
  /// The style of that section: "UserEnvStyle" or "FennoxStatsStyle".
  std::string htmlFormat;
};

/// What does not reach the design tool as the host handed it over, and why.
struct Hazard {
  /// The item as the host handed it over or the library wrote it. For a project directory, its
  /// context is "send", its key "project directory" and its value the directory.
  Item item;
  /// In words.
  std::string reason;
};

/// What the stand-in design tool made of a script: one report in the outbox.
struct Report {
  /// Its folder in the outbox, which goes with the sandbox.
  std::string folder;
  /// The folder's files by name: the script, the rules and both reports, byte for byte.
  std::map<std::string, std::string> files;
  /// The checksum of the report's content, which the design tool takes for the client's number.
  std::string clientId;
  /// As the script gives it.
  std::string registrationId;
  /// What the page says above the sections, as HTML.
  std::string intro;
  /// The clients that the script registered, in order.
  std::vector<std::string> clients;
  /// As Tcl read them, in order.
  std::vector<Item> items;
  /// Of the rules file, in order.
  std::vector<Rule> rules;
  /// What the design tool found suspicious, as it printed it.
  std::vector<std::string> warnings;

  /// The XML report, byte for byte.
  VESTRA_TESTKIT_EXPORT std::string xml() const;
  /// The HTML page, byte for byte.
  VESTRA_TESTKIT_EXPORT std::string html() const;
};

/// One item that the host handed to `Vestra::add`.
struct AddedItem {
  /// As it was given, one of the six or not.
  Oza::Vestra::SectionType section = Oza::Vestra::SOFTWARE_VERSION_AND_TARGET_DEVICE;
  /// Byte for byte.
  std::string key;
  /// Byte for byte.
  std::string value;
  /// Whether `send` was called later in the same process: other items are in no report.
  bool precedesSend = true;
};

/// An exception that left the host's code or `Vestra::send`.
struct Exception {
  /// The type's name as C++ writes it, "std::logic_error".
  std::string type;
  /// What it says of itself; empty when it is no `std::exception`.
  std::string text;
  /// The names of the classes that it derives from in public, directly or not.
  std::vector<std::string> bases = {};
};

/// Whether type and text are the same.
VESTRA_TESTKIT_EXPORT bool operator==(const Exception& a, const Exception& b);

/// The name that an exception of this type has in a run.
VESTRA_TESTKIT_EXPORT std::string nameOf(const std::type_info& type);

/// One call of `Vestra::send`.
struct Send {
  /// The absolute directory.
  std::string projectDirectory;
  /// As it was given.
  Oza::Vestra::ProductType product = Oza::Vestra::KELVO;
  /// Nothing when the call threw, or the host ended in it.
  std::optional<bool> answer;
  /// What the call threw; unknown of a program that was executed.
  std::optional<Exception> exception = std::nullopt;
};

/// Whether directory, product and outcome are the same.
VESTRA_TESTKIT_EXPORT bool operator==(const Send& a, const Send& b);

/// A command line of the host's own that it gave to the shell.
struct HostCommand {
  /// Byte for byte.
  std::string commandLine;
  /// As `system` returned it; nothing when the host ended first.
  std::optional<int> status;
};

/// An assertion of the test framework that failed in the host's code.
struct FailedAssertion {
  /// The source file, as the compiler was given it; empty where it is unknown.
  std::string file;
  /// From 1; whatever the framework says where it is unknown.
  int line = 0;
  /// What the framework says of it.
  std::string text;
};

/// One start of the main design tool by the library.
struct ToolRun {
  /// Byte for byte.
  std::string commandLine;
  /// As `system` returned it; nothing when the host ended before the tool did.
  std::optional<int> status;
  /// What it wrote: on the host's standard output and error, or into the lab
  /// tool's log.
  std::string output;
  /// The script as it lay there when it was started.
  std::string script;
  /// The rules file at the same moment.
  std::string rulesFile;
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
  /// When KELVO or TAVLO last reported: seconds since the epoch; 0 for never.
  std::optional<std::int64_t> lastSendTimeDefault;
  /// When KELVO_ALT last did.
  std::optional<std::int64_t> lastSendTimeType1;
  /// The number of the next attempt.
  std::optional<std::uint64_t> iteration;
  /// Whether the project's identifier came from the host.
  std::optional<bool> orbeloFlow;
  /// The project's identifier.
  std::optional<std::string> projectId;
};

/// All that one host process left.
///
/// A host that ended well gave an answer or let an exception out; otherwise a
/// signal ended it (SIGKILL when its time was up), or it left by itself.
struct HostRun {
  /// What `send` gave, or the host's code. Of a program that was executed: what its
  /// last `send` gave.
  std::optional<bool> answer;
  /// What left the host's code instead. Unknown of a program that was executed.
  std::optional<Exception> exception;
  /// The signal that ended the process.
  std::optional<int> signal;
  /// Nothing when a signal ended the process.
  std::optional<int> exitStatus;
  /// Whether the time limit was over before the host had ended.
  bool timedOut = false;
  /// Why this run may have done what nobody recorded: processes of it that ran without the
  /// test kit's preloaded objects, a sentence each. Empty for a sound run.
  std::vector<std::string> unsoundness;
  /// Processes that had not ended with the host and were ended after it, each as its command
  /// line.
  std::vector<std::string> outlivingProcesses;

  /// What the host wrote on its standard output, the tool's part taken out.
  std::string output;
  /// The same for its standard error.
  std::string errorOutput;

  /// The items that the host handed over, in order. Empty for a program that holds
  /// the library itself instead of loading it.
  std::vector<AddedItem> added;
  /// The reports that the host asked for, in order; empty likewise.
  std::vector<Send> sends;
  /// What the host gave to the shell itself, in order.
  std::vector<HostCommand> hostCommands;
  /// The assertions that failed in the host's code. They fail the test by themselves.
  std::vector<FailedAssertion> failedAssertions;

  /// What the library started through the shell, in order.
  std::vector<ToolRun> toolRuns;
  /// What the stand-in design tool reported in this run, in order.
  std::vector<Report> reports;
  /// The calls that the stand-in support library got, a line each.
  std::vector<std::string> supportCalls;

  /// The script that was written last: as the tool found it or, when it was not
  /// started, as it lies in the project. Empty without one.
  std::string script;
  /// The rules file that was written last, likewise.
  std::string rulesFile;
  /// The items in `script`, as the library wrote them: where the script could be read
  /// in two ways, as the host handed them over.
  std::vector<Item> writtenItems;

  /// The settings file at the run's end; nothing when it is missing.
  std::optional<Settings> settings;
  /// The identity file at the run's end; nothing when it is missing.
  std::optional<Identity> identity;

  /// The sandbox's directory, there or not.
  std::string directory;
  /// Where the identity file lies, there or not.
  std::string identityFile;

  /// The last report's; nothing when none was made.
  VESTRA_TESTKIT_EXPORT const Report* report() const;

  /// A section's items as the design tool read them or, when there is no report, as they were written.
  VESTRA_TESTKIT_EXPORT std::vector<Item> items(Oza::Vestra::SectionType section) const;

  /// The values of a section's key as the design tool read them or, when there is
  /// no report, as they were written.
  VESTRA_TESTKIT_EXPORT std::vector<std::string> values(Oza::Vestra::SectionType section,
                                                        const std::string& key) const;

  /// What the design tool does not read as the host handed it over, each with the reason in words:
  /// items that the interpreter changes, that the report leaves out or that some locales lose, and
  /// project directories that the shell or the interpreter changes.
  VESTRA_TESTKIT_EXPORT std::vector<Hazard> hazards() const;

  /// Whether there is a script or a report to say something about.
  VESTRA_TESTKIT_EXPORT bool hasScript() const;

  /// What sanitizers found in the host, the first line of each report: memory errors, leaks, races,
  /// undefined behaviour.
  VESTRA_TESTKIT_EXPORT std::vector<std::string> sanitizerFindings() const;

  /// Whether a signal, the time limit or a sanitizer's error ended the host. A leak, which is found
  /// at the host's end, does not count.
  VESTRA_TESTKIT_EXPORT bool crashed() const;

  /// Whether the host came to its end: it did not crash, and no exception left it.
  VESTRA_TESTKIT_EXPORT bool endedWell() const;
};

/// How the host ended, in a few words: "whose host was ended by signal 11
/// (Segmentation fault)".
VESTRA_TESTKIT_EXPORT std::string endOf(const HostRun& run);

/// Why the report was not sent, in words, with the file or the time that it hangs on.
VESTRA_TESTKIT_EXPORT std::string whyNotSent(const HostRun& run);

/// What there is in the place of an item: the values of its key, or that the key is
/// missing, with the keys that there are and the same key's place in other sections.
VESTRA_TESTKIT_EXPORT std::string whatIsThere(const HostRun& run, Oza::Vestra::SectionType section,
                                              const std::string& key);

/// What may be wrong with the run, the cause first, in no more than `lineLimit` lines, of which
/// there must be one or more.
VESTRA_TESTKIT_EXPORT std::string summaryOf(const HostRun& run, std::size_t lineLimit);

/// A readable account of the run: how it ended, what was run, what was reported, the
/// script, and the files at its end. Names no path that is gone.
VESTRA_TESTKIT_EXPORT std::ostream& operator<<(std::ostream& out, const HostRun& run);

/// Prints a value readably: in one line or, for what has several, in lines of its own.
/// @{
VESTRA_TESTKIT_EXPORT std::ostream& operator<<(std::ostream& out, const Item& item);
VESTRA_TESTKIT_EXPORT std::ostream& operator<<(std::ostream& out, const AddedItem& item);
VESTRA_TESTKIT_EXPORT std::ostream& operator<<(std::ostream& out, const Hazard& hazard);
VESTRA_TESTKIT_EXPORT std::ostream& operator<<(std::ostream& out, const Report& report);
VESTRA_TESTKIT_EXPORT std::ostream& operator<<(std::ostream& out, const Send& send);
VESTRA_TESTKIT_EXPORT std::ostream& operator<<(std::ostream& out, const HostCommand& command);
VESTRA_TESTKIT_EXPORT std::ostream& operator<<(std::ostream& out, const FailedAssertion& assertion);
VESTRA_TESTKIT_EXPORT std::ostream& operator<<(std::ostream& out, const ToolRun& run);
VESTRA_TESTKIT_EXPORT std::ostream& operator<<(std::ostream& out, const Exception& exception);
VESTRA_TESTKIT_EXPORT std::ostream& operator<<(std::ostream& out, const Settings& settings);
VESTRA_TESTKIT_EXPORT std::ostream& operator<<(std::ostream& out, const Identity& identity);
/// @}

/// What the test framework prints for a run: how it ended, in one line, so that a
/// matcher's reason stands before the account.
VESTRA_TESTKIT_EXPORT void PrintTo(const HostRun& run, std::ostream* out);

}  // namespace vestra::testkit

#endif
