#include <sys/stat.h>

#include <cstdint>
#include <ostream>
#include <sstream>

#include <vestra/testkit/host_run.h>

#include "reading/visible_text.h"
#include "recorder/bytes.h"
#include "sandbox/results/directory_name.h"

namespace vestra::testkit {
namespace {

using reading::forTerminal;
using reading::inQuotes;

constexpr std::size_t WHOLE = std::string::npos;

/// Lines of a text, each behind a title's.
void printBlock(std::ostream& out, const char* title, const std::string& text) {
  if (!text.empty()) {
    out << title << ":\n";
    for (const std::string& line : linesOf(text)) {
      out << "  " << forTerminal(line) << '\n';
    }
  }
}

template <typename Elements>
void printList(std::ostream& out, const char* title, const Elements& elements) {
  if (!elements.empty()) {
    out << title << ":\n";
    for (const auto& element : elements) {
      out << "  " << element << '\n';
    }
  }
}

template <typename Value>
void printIfThere(std::ostream& out, const char* title, const std::optional<Value>& value) {
  if (value) {
    out << title << *value;
  }
}

void printStatus(std::ostream& out, const std::optional<int>& status) {
  if (status) {
    out << ", status " << *status;
  } else {
    out << ", not ended";
  }
}

void printAll(std::ostream& out, const HostRun& run) {
  out << "a run " << endOf(run) << '\n';
  printList(out, "failed assertions", run.failedAssertions);
  printBlock(out, "the host wrote", run.output);
  printBlock(out, "the host wrote on standard error", run.errorOutput);
  printList(out, "the host's own commands", run.hostCommands);
  printList(out, "asked for", run.sends);
  if (run.toolRuns.empty()) {
    out << "the design tool was not started\n";
  }
  printList(out, "started", run.toolRuns);
  for (const Report& report : run.reports) {
    out << report;
  }
  if (run.reports.empty()) {
    printList(out, "items as they were written", run.writtenItems);
  }
  printList(out, "hazards", run.hazards());
  printBlock(out, "script", run.script);
  printIfThere(out, "", run.identity);
  printIfThere(out, "", run.settings);
}

bool isThere(const std::string& path) {
  struct stat status {};
  return stat(path.c_str(), &status) == 0;
}

}  // namespace

std::ostream& operator<<(std::ostream& out, const Item& item) {
  return out << forTerminal(item.context) << ": " << forTerminal(item.key) << " = "
             << inQuotes(item.value, WHOLE);
}

std::ostream& operator<<(std::ostream& out, const AddedItem& item) {
  return out << contextOf(item.section) << ": " << forTerminal(item.key) << " = "
             << inQuotes(item.value, WHOLE);
}

std::ostream& operator<<(std::ostream& out, const Hazard& hazard) {
  return out << hazard.item << ": " << hazard.reason;
}

std::ostream& operator<<(std::ostream& out, const Rule& rule) {
  return out << forTerminal(rule.client) << ' ' << forTerminal(rule.context) << ": XML "
             << inQuotes(rule.xmlMap) << ", HTML " << inQuotes(rule.htmlMap) << " as "
             << forTerminal(rule.htmlFormat);
}

std::ostream& operator<<(std::ostream& out, const Report& report) {
  out << "report " << forTerminal(report.clientId) << " of " << forTerminal(report.registrationId);
  out << (isThere(report.folder) ? ", " + report.folder : "") << '\n';
  printList(out, "items as the design tool read them", report.items);
  printList(out, "its warnings", report.warnings);
  return out;
}

std::ostream& operator<<(std::ostream& out, const Send& send) {
  out << "send(" << inQuotes(send.projectDirectory, WHOLE) << ", ";
  switch (send.product) {
    case Oza::Vestra::KELVO:
      out << "KELVO";
      break;
    case Oza::Vestra::KELVO_ALT:
      out << "KELVO_ALT";
      break;
    case Oza::Vestra::TAVLO:
      out << "TAVLO";
      break;
    default:
      out << static_cast<std::uint32_t>(send.product);
  }
  return out << "): " << (!send.answer ? "no answer" : *send.answer ? "true" : "false");
}

std::ostream& operator<<(std::ostream& out, const HostCommand& command) {
  out << forTerminal(command.commandLine);
  printStatus(out, command.status);
  return out;
}

std::ostream& operator<<(std::ostream& out, const FailedAssertion& assertion) {
  return out << assertion.file << ':' << assertion.line << ": " << assertion.text;
}

std::ostream& operator<<(std::ostream& out, const ToolRun& run) {
  out << forTerminal(run.commandLine);
  printStatus(out, run.status);
  for (const std::string& line : linesOf(run.output)) {
    out << "\n    " << forTerminal(line);
  }
  return out;
}

std::ostream& operator<<(std::ostream& out, const Exception& exception) {
  return out << exception.type << ' ' << inQuotes(exception.text, WHOLE);
}

std::ostream& operator<<(std::ostream& out, const Settings& settings) {
  printBlock(out, "settings", settings.text);
  return out;
}

std::ostream& operator<<(std::ostream& out, const Identity& identity) {
  printBlock(out, "identity", identity.text);
  return out;
}

std::ostream& operator<<(std::ostream& out, const HostRun& run) {
  std::ostringstream text;
  printAll(text, run);
  return out << withoutGoneDirectory(text.str(), run.directory);
}

void PrintTo(const HostRun& run, std::ostream* out) { *out << "a run " << endOf(run); }

}  // namespace vestra::testkit
