#include <sys/stat.h>

#include <algorithm>
#include <ostream>
#include <sstream>

#include <vestra/testkit/host_run.h>

#include "reading/visible_text.h"
#include "recorder/bytes.h"
#include "sandbox/results/reasons.h"

namespace vestra::testkit {
namespace {

using reading::forTerminal;
using reading::inQuotes;

constexpr std::size_t WHOLE = std::string::npos;

// Of a summary.
constexpr std::size_t LINES_OF_A_BLOCK = 4;
constexpr std::size_t LINE_LENGTH = 200;

/// A part of an account: lines below their title.
struct Block {
  std::string title;
  std::vector<std::string> lines;
};

std::ostream& print(std::ostream& out, const std::vector<Block>& blocks) {
  for (const Block& block : blocks) {
    out << (block.lines.empty() ? "" : block.title + ":\n");
    for (const std::string& line : block.lines) {
      out << "  " << line << '\n';
    }
  }
  return out;
}

std::vector<std::string> visible(std::vector<std::string> lines) {
  std::transform(lines.begin(), lines.end(), lines.begin(),
                 [](const auto& line) { return forTerminal(line); });
  return lines;
}

std::vector<std::string> visibleLines(const std::string& text) { return visible(linesOf(text)); }

/// The elements as they print themselves.
template <typename Elements>
std::vector<std::string> linesFor(const Elements& elements) {
  std::ostringstream text;
  for (const auto& element : elements) {
    text << element << '\n';
  }
  return linesOf(text.str());
}

std::string endText(const std::optional<int>& status) {
  return status ? ", " + statusText(*status) : ", not ended";
}

std::string headlineOf(const Report& report) {
  struct stat status {};
  const bool isThere = stat(report.folder.c_str(), &status) == 0;
  return "report " + forTerminal(report.clientId) + " of " + forTerminal(report.registrationId) +
         (isThere ? ", " + report.folder : "");
}

Block warningsOf(const Report& report) { return {"the design tool's warnings", visible(report.warnings)}; }

/// What may be wrong, the worst first.
std::vector<Block> causesIn(const HostRun& run) {
  std::vector<Block> blocks{
      {"it proves nothing", run.unsoundness},
      {"sanitizers' findings", visible(run.sanitizerFindings())},
      {"failed assertions", linesFor(run.failedAssertions)},
      {"processes that outlived the host", visible(run.outlivingProcesses)},
      {"sends", linesFor(run.sends)},
      {"started", run.toolRuns.empty() ? std::vector<std::string>{"no design tool"} : linesFor(run.toolRuns)},
      {"hazards", linesFor(run.hazards())},
      {"the host wrote on standard error", visibleLines(run.errorOutput)},
      {"the host wrote", visibleLines(run.output)},
      {"the host's own commands", linesFor(run.hostCommands)},
      {"added", linesFor(run.added)}};
  for (const Report& report : run.reports) {
    blocks.push_back(warningsOf(report));
  }
  return blocks;
}

std::string firstLine(const HostRun& run) { return "a run " + endOf(run) + "\n"; }

/// The block with no more than `limit` lines, of which the last says how many there are besides.
Block cut(Block block, std::size_t limit) {
  if (block.lines.size() > limit) {
    const std::size_t left = block.lines.size() - (limit - 1);
    block.lines.resize(limit - 1);
    block.lines.push_back("and " + std::to_string(left) + " more: print the run to see all");
  }
  for (std::string& line : block.lines) {
    line = line.size() > LINE_LENGTH ? line.substr(0, LINE_LENGTH) + "..." : line;
  }
  return block;
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

std::ostream& operator<<(std::ostream& out, const Report& report) {
  return print(out, {{headlineOf(report), linesFor(report.items)}, warningsOf(report)});
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
  out << "): ";
  if (send.exception) {
    return out << *send.exception;
  }
  return out << (!send.answer ? "no answer" : *send.answer ? "true" : "false");
}

std::ostream& operator<<(std::ostream& out, const HostCommand& command) {
  return out << forTerminal(command.commandLine) << endText(command.status);
}

std::ostream& operator<<(std::ostream& out, const FailedAssertion& assertion) {
  return out << assertion.file << ':' << assertion.line << ": " << assertion.text;
}

std::ostream& operator<<(std::ostream& out, const ToolRun& run) {
  out << forTerminal(run.commandLine) << endText(run.status);
  for (const std::string& line : linesOf(run.output)) {
    out << "\n    " << forTerminal(line);
  }
  return out;
}

std::ostream& operator<<(std::ostream& out, const Exception& exception) {
  return out << exception.type << ' ' << inQuotes(exception.text, WHOLE);
}

std::ostream& operator<<(std::ostream& out, const Settings& settings) {
  return print(out, {{"settings", visibleLines(settings.text)}});
}

std::ostream& operator<<(std::ostream& out, const Identity& identity) {
  return print(out, {{"identity", visibleLines(identity.text)}});
}

std::ostream& operator<<(std::ostream& out, const HostRun& run) {
  std::ostringstream text;
  print(text << firstLine(run), causesIn(run));
  for (const Report& report : run.reports) {
    print(text, {{headlineOf(report), linesFor(report.items)}});
  }
  print(text, {{"items as they were written",
                linesFor(run.reports.empty() ? run.writtenItems : std::vector<Item>())},
               {"script", visibleLines(run.script)}});
  if (run.identity) {
    text << *run.identity;
  }
  if (run.settings) {
    text << *run.settings;
  }
  return out << withoutGoneDirectory(text.str(), run.directory);
}

std::string summaryOf(const HostRun& run, std::size_t lineLimit) {
  std::ostringstream text;
  text << firstLine(run);
  std::size_t left = lineLimit - 1;
  for (const Block& block : causesIn(run)) {
    if (left >= 3 && !block.lines.empty()) {
      const Block shown = cut(block, std::min(LINES_OF_A_BLOCK, left - 1));
      print(text, {shown});
      left -= shown.lines.size() + 1;
    }
  }
  return withoutGoneDirectory(text.str(), run.directory);
}

void PrintTo(const HostRun& run, std::ostream* out) { *out << "a run " << endOf(run); }

}  // namespace vestra::testkit
