#include <algorithm>
#include <cstdint>
#include <ctime>
#include <limits>

#include <fmt/format.h>

#include "checks/checks.h"
#include "handler/product_profile.h"

namespace vestra::inspect {
namespace {

constexpr std::int64_t CLOCK_TOLERANCE = 60;

/// Products whose day this line keeps.
std::string usersOf(int line) { return line == 1 ? "KELVO and TAVLO" : "KELVO_ALT"; }

void checkSlot(const Facts& facts, Product product, int line, Findings& findings) {
  const Prediction& next = facts.predictionFor(product);
  const std::string place = fmt::format("{}:{}", facts.project.identityFile.path, line);
  if (next.last > facts.context.now) {
    findings.add(
        "due.future",
        fmt::format("{} says {}, and now is {}. {}: nothing is handed over before {}", place,
                    timeText(next.last), timeText(facts.context.now), usersOf(line), timeText(next.dueFrom)),
        editOf(facts.project.identityFile, fmt::format("{}s/.*/0/", line)));
  } else if (next.last < 0) {
    findings.add("due.negative", fmt::format("{} says {}", place, next.last));
  } else if (!next.isDue) {
    findings.add(
        "due.later",
        fmt::format("{}: last handed over {} ({}). More than 86400 seconds must pass: due from {}, in {}",
                    usersOf(line), timeText(next.last), place, timeText(next.dueFrom),
                    durationText(between(facts.context.now, next.dueFrom))));
  }
}

bool isOnDisk(const Facts& facts, const char* product) {
  return std::any_of(facts.project.files.begin(), facts.project.files.end(),
                     [&](const ReportFile& file) { return file.product == product; });
}

/// A line without a zone would be read in the wrong one.
std::tm localTime(std::int64_t seconds) {
  const auto time = static_cast<std::time_t>(seconds);
  std::tm local{};
  localtime_r(&time, &local);
  return local;
}

}  // namespace

void checkDue(const Facts& facts, Findings& findings) {
  if (facts.project.state != IdentityState::usable) {
    return;
  }
  checkSlot(facts, Oza::Vestra::KELVO, 1, findings);
  checkSlot(facts, Oza::Vestra::KELVO_ALT, 2, findings);
  if (isOnDisk(facts, "KELVO") && isOnDisk(facts, "TAVLO")) {
    findings.add("due.shared", "both products have left files here");
  }
  if (between(facts.context.now, facts.project.identityFile.modified) > CLOCK_TOLERANCE) {
    findings.add("clock.behind",
                 fmt::format("{} was last written {} by the file system's time",
                             facts.project.identityFile.path, timeText(facts.project.identityFile.modified)));
  }
}

// A time that no calendar reaches is told as its number.
std::string timeText(std::int64_t seconds) {
  constexpr std::int64_t endOfCalendar = 253402300800;
  if (seconds < -62135596800 || seconds >= endOfCalendar) {
    return fmt::format("second {}", seconds);
  }
  const std::tm local = localTime(seconds);
  char text[64] = "";
  std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S %Z", &local);
  return text;
}

std::int64_t between(std::int64_t begin, std::int64_t end) {
  std::int64_t time = 0;
  return __builtin_sub_overflow(end, begin, &time) ? std::numeric_limits<std::int64_t>::max() : time;
}

std::string durationText(std::int64_t seconds) {
  if (seconds < 3600) {
    return fmt::format("{} min", std::max<std::int64_t>(1, (seconds + 30) / 60));
  }
  return seconds < 172800 ? fmt::format("{} h {} min", seconds / 3600, seconds % 3600 / 60)
                          : fmt::format("{} days", seconds / 86400);
}

}  // namespace vestra::inspect
