// What matchers say of a run that is not as a test wants it.

#include "sandbox/results/reasons.h"

#include <sys/wait.h>

#include <array>
#include <cstdint>
#include <cstring>
#include <ctime>
#include <optional>
#include <sstream>

#include <vestra/testkit/host_run.h>
#include <boost/algorithm/string/replace.hpp>
#include <boost/filesystem/operations.hpp>

#include "reading/visible_text.h"
#include "recorder/bytes.h"

namespace vestra::testkit {
namespace {

using reading::inQuotes;

constexpr std::int64_t A_DAY = 86400;
constexpr std::size_t KEYS_LENGTH = 300;

std::string utc(std::int64_t time) {
  const std::time_t seconds = time;
  std::tm parts{};
  gmtime_r(&seconds, &parts);
  std::array<char, 32> text{};
  std::strftime(text.data(), text.size(), "%Y-%m-%d %H:%M:%S UTC", &parts);
  return text.data();
}

std::optional<std::int64_t> lastSent(const HostRun& run) {
  if (!run.identity) {
    return std::nullopt;
  }
  const bool isOther = !run.sends.empty() && run.sends.back().product == Oza::Vestra::KELVO_ALT;
  return isOther ? run.identity->lastSendTimeType1 : run.identity->lastSendTimeDefault;
}

std::string whyNotStarted(const HostRun& run) {
  if (run.script.empty() && run.rulesFile.empty()) {
    return "which could not use the identity file " + run.identityFile;
  }
  if (run.script.empty()) {
    return "which found no support library, libqvzcommonvestrasupport.so";
  }
  const auto sent = lastSent(run);
  return sent ? "which was not due until " + utc(*sent + A_DAY + 1) + ": " + run.identityFile +
                    " says that the last report went at " + utc(*sent)
              : "which was not due";
}

std::string lastLineOf(const std::string& output) {
  const auto lines = linesOf(output);
  return lines.empty() ? "" : ": " + lines.back();
}

std::string whyNotReported(const HostRun& run) {
  if (run.toolRuns.empty()) {
    return "whose send answered true, but which started no design tool";
  }
  const ToolRun& tool = run.toolRuns.back();
  const std::string end =
      tool.status ? " ended with " + statusText(*tool.status) + " and made no report" : " did not end";
  return "whose design tool" + end + lastLineOf(tool.output);
}

std::string outcomeOf(const HostRun& run) {
  if (run.sends.empty()) {
    return endOf(run) + " and called no send";
  }
  const Send& send = run.sends.back();
  if (send.exception) {
    return "whose send threw " + send.exception->type + " " + inQuotes(send.exception->text);
  }
  if (!send.answer) {
    return endOf(run) + " before send returned";
  }
  return *send.answer ? whyNotReported(run) : whyNotStarted(run);
}

/// The section's keys, and the other sections that have this one.
std::string instead(const HostRun& run, Oza::Vestra::SectionType section, const std::string& key) {
  std::string keys;
  for (const Item& item : run.items(section)) {
    keys += (keys.empty() ? ", only " : ", ") + inQuotes(item.key);
  }
  std::string elsewhere;
  for (const Item& item : run.report() != nullptr ? run.report()->items : run.writtenItems) {
    elsewhere += item.key == key ? "; " + item.context + " has it: " + inQuotes(item.value) : "";
  }
  return "which has no key " + inQuotes(key) + " in " + contextOf(section) + keys.substr(0, KEYS_LENGTH) +
         (keys.size() > KEYS_LENGTH ? "..." : "") + elsewhere;
}

}  // namespace

std::string withoutDirectory(std::string text, const std::string& directory) {
  boost::algorithm::replace_all(text, directory, "SANDBOX");
  return text;
}

std::string withoutGoneDirectory(const std::string& text, const std::string& directory) {
  return directory.empty() || boost::filesystem::exists(directory) ? text : withoutDirectory(text, directory);
}

std::string statusText(int status) {
  return WIFSIGNALED(status) ? "signal " + std::to_string(WTERMSIG(status))
                             : "status " + std::to_string(WIFEXITED(status) ? WEXITSTATUS(status) : status);
}

std::string endOf(const HostRun& run) {
  if (run.timedOut) {
    return "whose time was up";
  }
  if (run.signal) {
    return "whose host was ended by signal " + std::to_string(*run.signal) + " (" + strsignal(*run.signal) +
           ")";
  }
  if (run.exception) {
    return "whose host threw " + run.exception->type + " " + inQuotes(run.exception->text);
  }
  if (run.exitStatus.value_or(0) != 0) {
    return "whose host ended with status " + std::to_string(*run.exitStatus);
  }
  return !run.answer ? "whose host gave no answer"
                     : std::string("whose host answered ") + (*run.answer ? "true" : "false");
}

std::string whyNotSent(const HostRun& run) {
  const std::string sent = run.reports.empty() ? "" : "which sent a report, but ";
  const std::string reason = run.endedWell() ? outcomeOf(run) : endOf(run);
  return withoutGoneDirectory(sent + reason, run.directory);
}

std::string whatIsThere(const HostRun& run, Oza::Vestra::SectionType section, const std::string& key) {
  const auto values = run.values(section, key);
  if (values.empty()) {
    return instead(run, section, key);
  }
  std::string text = "whose " + inQuotes(key) + " in " + contextOf(section) + " is ";
  for (const std::string& value : values) {
    text += (&value == &values.front() ? "" : " and ") + inQuotes(value);
  }
  return text;
}

}  // namespace vestra::testkit
