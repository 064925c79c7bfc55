#include <cstring>
#include <ostream>

#include <vestra/testkit/host_run.h>

namespace vestra::testkit {
namespace {

/// Bytes that a terminal would not show as they are, made visible.
std::string visible(const std::string& bytes) {
  constexpr const char* digits = "0123456789abcdef";
  std::string text;
  for (const char byte : bytes) {
    const auto code = static_cast<unsigned char>(byte);
    if (code < 0x20 || code == 0x7F) {
      text += std::string("\\x") + digits[code >> 4] + digits[code & 0xF];
    } else {
      text += byte;
    }
  }
  return text;
}

void printEnd(std::ostream& out, const HostRun& run) {
  if (run.timedOut) {
    out << "ended: its time was up\n";
  } else if (run.signal) {
    out << "ended: by signal " << *run.signal << " (" << strsignal(*run.signal) << ")\n";
  } else if (run.exception) {
    out << "ended: with " << run.exception->type << " \"" << visible(run.exception->text) << "\"\n";
  } else if (run.answer) {
    out << "answer: " << (*run.answer ? "true" : "false") << '\n';
  }
  if (run.exitStatus.value_or(0) != 0) {
    out << "exit status: " << *run.exitStatus << '\n';
  }
}

void printBlock(std::ostream& out, const char* title, const std::string& text) {
  if (!text.empty()) {
    out << title << ":\n" << text << (text.back() == '\n' ? "" : "\n");
  }
}

void printToolRuns(std::ostream& out, const HostRun& run) {
  if (run.toolRuns.empty()) {
    out << "the design tool was not started\n";
  }
  for (const ToolRun& tool : run.toolRuns) {
    out << "shell: " << visible(tool.commandLine) << '\n';
    if (tool.status) {
      out << "  status " << *tool.status << '\n';
    }
    printBlock(out, "  the tool wrote", tool.output);
  }
}

void printItems(std::ostream& out, const char* title, const std::vector<Item>& items) {
  out << title << '\n';
  for (const Item& item : items) {
    out << "  " << item << '\n';
  }
}

void printReports(std::ostream& out, const HostRun& run) {
  for (const Report& report : run.reports) {
    out << "report " << visible(report.clientId) << " of " << visible(report.registrationId) << ", "
        << report.folder << '\n';
    printItems(out, "  as the design tool read it:", report.items);
    for (const std::string& warning : report.warnings) {
      out << "  " << warning << '\n';
    }
  }
  if (run.reports.empty() && !run.writtenItems.empty()) {
    printItems(out, "script, as it was written:", run.writtenItems);
  }
}

}  // namespace

std::ostream& operator<<(std::ostream& out, const Item& item) {
  return out << visible(item.context) << ": " << visible(item.key) << " = \"" << visible(item.value) << '"';
}

std::ostream& operator<<(std::ostream& out, const Hazard& hazard) {
  return out << hazard.item << ": " << hazard.reason;
}

std::ostream& operator<<(std::ostream& out, const HostRun& run) {
  out << "run of a host\n";
  printEnd(out, run);
  printBlock(out, "the host wrote", run.output);
  printBlock(out, "the host wrote on standard error", run.errorOutput);
  printToolRuns(out, run);
  printReports(out, run);
  return out;
}

}  // namespace vestra::testkit
