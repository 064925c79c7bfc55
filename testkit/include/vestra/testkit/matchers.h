#ifndef VESTRA_TESTKIT_MATCHERS_H
#define VESTRA_TESTKIT_MATCHERS_H

#include <algorithm>
#include <string>

#include <gmock/gmock.h>

#include <vestra/testkit/host_run.h>

/// GoogleTest matchers of a `HostRun`. A failure shows the whole run with its report,
/// since GoogleTest prints the value that did not match.
namespace vestra::testkit {

/// `send` gave true and the main design tool reported.
MATCHER(WasSent, negation ? "was not sent" : "was sent, with a report of the main design tool") {
  const bool answered = arg.answer == true;
  if (answered) {
    *result_listener << "with " << arg.reports.size() << " report(s)";
  } else {
    *result_listener << "whose send did not give true";
  }
  return answered && !arg.reports.empty();
}

/// The section has an item with this key whose value matches: a text or a matcher.
MATCHER_P3(HasItem, section, key, value,
           std::string(negation ? "has no" : "has an") + " item \"" + std::string(key) + "\" in " +
               contextOf(section) + " whose value " + ::testing::DescribeMatcher<std::string>(value)) {
  const auto values = arg.values(section, key);
  const ::testing::Matcher<std::string> matcher = ::testing::SafeMatcherCast<std::string>(value);
  if (values.empty()) {
    *result_listener << "which has no such key";
  } else {
    *result_listener << "whose value is " << ::testing::PrintToString(values);
  }
  return std::any_of(values.begin(), values.end(),
                     [&](const std::string& each) { return matcher.Matches(each); });
}

/// The design tool reads every item as it was written.
MATCHER(HasNoHazards, negation ? "has hazards" : "has no hazards") {
  const auto hazards = arg.hazards();
  *result_listener << (hazards.empty() ? "without hazards" : "with hazards:");
  for (const auto& hazard : hazards) {
    *result_listener << "\n  " << hazard;
  }
  return hazards.empty();
}

/// The host's code let an exception of this type out, with this text.
MATCHER_P2(Threw, type, text,
           std::string(negation ? "did not throw " : "threw ") + type + " \"" + text + "\"") {
  return arg.exception && arg.exception->type == type && arg.exception->text == text;
}

/// No signal, no time-out, and nothing printed but by the tool.
MATCHER(EndedQuietly, negation ? "did not end quietly" : "ended by itself and printed nothing") {
  return arg.exitStatus == 0 && arg.output.empty() && arg.errorOutput.empty();
}

}  // namespace vestra::testkit

#endif
