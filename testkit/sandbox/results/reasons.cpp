// What matchers say of a run that is not as a test wants it.

#include "sandbox/results/reasons.h"

#include <sys/wait.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <ctime>
#include <numeric>
#include <optional>
#include <sstream>

#include <vestra/testkit/host_run.h>

#include "reading/visible_text.h"
#include "recorder/bytes.h"
#include "sandbox/results/directory_name.h"

namespace vestra::testkit {
namespace {

using reading::inQuotes;

constexpr std::int64_t A_DAY = 86400;

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

/// The last message of the design tool, without the lines that show what it is about.
std::string lastMessageIn(const std::string& output) {
  const auto lines = linesOf(output);
  const auto last = std::find_if(lines.rbegin(), lines.rend(),
                                 [](const std::string& line) { return !line.empty() && line[0] != ' '; });
  return last == lines.rend() ? "" : ": " + *last;
}

std::string whyNotReported(const HostRun& run) {
  if (run.toolRuns.empty()) {
    return "whose send answered true, but which started no design tool";
  }
  const ToolRun& tool = run.toolRuns.back();
  const std::string end =
      tool.status ? " ended with " + statusText(*tool.status) + " and made no report" : " did not end";
  return "whose design tool" + end + lastMessageIn(tool.output);
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

/// In how many places two keys differ: characters put in, left out or replaced.
std::size_t distance(const std::string& a, const std::string& b) {
  std::vector<std::size_t> row(b.size() + 1);
  std::iota(row.begin(), row.end(), 0);
  for (std::size_t i = 0; i < a.size(); ++i) {
    std::size_t diagonal = row[0];
    row[0] = i + 1;
    for (std::size_t j = 0; j < b.size(); ++j) {
      const std::size_t replaced = diagonal + (a[i] == b[j] ? 0 : 1);
      diagonal = row[j + 1];
      row[j + 1] = std::min({replaced, row[j] + 1, diagonal + 1});
    }
  }
  return row.back();
}

const std::vector<Item>& itemsOf(const HostRun& run) {
  return run.report() != nullptr ? run.report()->items : run.writtenItems;
}

/// The item of the section whose key is most like the wanted one; null when none is.
const Item* nearestTo(const std::string& key, const std::string& context, const std::vector<Item>& items) {
  const Item* nearest = nullptr;
  std::size_t least = key.size() / 2 + 1;
  for (const Item& item : items) {
    const std::size_t away = item.context == context ? distance(key, item.key) : least;
    if (away < least) {
      nearest = &item;
      least = away;
    }
  }
  return nearest;
}

std::string sameKeyElsewhere(const std::string& key, const std::vector<Item>& items) {
  std::string text;
  for (const Item& item : items) {
    if (item.key == key) {
      text += "; " + item.context + " has it: " + inQuotes(item.value);
    }
  }
  return text;
}

std::string instead(const HostRun& run, const std::string& context, const std::string& key) {
  const auto& items = itemsOf(run);
  std::string text = "which has no key " + inQuotes(key) + " in " + context;
  if (const Item* nearest = nearestTo(key, context, items)) {
    text += "; the nearest is " + inQuotes(nearest->key) + " = " + inQuotes(nearest->value);
  }
  return text + sameKeyElsewhere(key, items);
}

}  // namespace

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
    return instead(run, contextOf(section), key);
  }
  std::string text = "whose " + inQuotes(key) + " in " + contextOf(section) + " is ";
  for (const std::string& value : values) {
    text += (&value == &values.front() ? "" : " and ") + inQuotes(value);
  }
  return text;
}

}  // namespace vestra::testkit
