#ifndef VESTRA_TESTKIT_MATCHERS_H
#define VESTRA_TESTKIT_MATCHERS_H

#include <algorithm>
#include <locale>
#include <ostream>
#include <sstream>
#include <string>
#include <type_traits>
#include <utility>

#include <gmock/gmock.h>

#include <vestra/testkit/google_test.h>
#include <vestra/testkit/host_run.h>

/// GoogleTest matchers of a `HostRun`. A failure says the reason first, and then shows
/// the whole run.
///
/// Where a run cannot tell, neither a matcher nor its `Not` matches: `WasSent` of a host
/// that crashed or threw, and what is said of a script where there is none.
namespace vestra::testkit {

/// What a check makes of a run.
enum class Verdict { MATCHES, DIFFERS, CANNOT_TELL };

/// A matcher made of a check, which gives a `Verdict` and its reason.
template <typename Check>
class RunMatcher {
 public:
  /// @param whatIsChecked  Gives a verdict of a run, and describes itself.
  /// @param isNegation     Whether runs match from which the check differs.
  explicit RunMatcher(Check whatIsChecked, bool isNegation = false)
      : check(std::move(whatIsChecked)), negated(isNegation) {}

  /// Matches the runs from which the check differs, not those of which it cannot tell.
  RunMatcher negation() const { return RunMatcher(check, !negated); }

  /// The matcher as GoogleTest takes it.
  template <typename Run>
  operator testing::Matcher<Run>() const {  // NOLINT(google-explicit-constructor): as matchers do.
    return testing::Matcher<Run>(new Implementation<Run>(check, negated));
  }

 private:
  template <typename Run>
  class Implementation : public testing::MatcherInterface<Run> {
   public:
    Implementation(Check whatIsChecked, bool isNegation)
        : check(std::move(whatIsChecked)), negated(isNegation) {}

    bool MatchAndExplain(Run run, testing::MatchResultListener* listener) const override {
      std::ostringstream reason;
      const Verdict verdict = check(run, reason);
      const bool matches = verdict == (negated ? Verdict::DIFFERS : Verdict::MATCHES);
      *listener << reason.str();
      if (!matches && listener->IsInterested()) {
        *listener << "\n" << accountOf(run);
      }
      return matches;
    }

    void DescribeTo(std::ostream* out) const override { check.describe(*out, negated); }
    void DescribeNegationTo(std::ostream* out) const override { check.describe(*out, !negated); }

   private:
    static std::string accountOf(const HostRun& run) {
      std::ostringstream account;
      account << run;
      return account.str();
    }

    Check check;
    bool negated;
  };

  Check check;
  bool negated;
};

}  // namespace vestra::testkit

/// @cond
// The framework negates whatever a matcher gives, which is wrong where a run cannot tell.
template <typename Check>
class testing::internal::NotMatcher<vestra::testkit::RunMatcher<Check>> {
 public:
  explicit NotMatcher(vestra::testkit::RunMatcher<Check> matcher) : negation(matcher.negation()) {}

  template <typename Run>
  operator testing::Matcher<Run>() const {  // NOLINT(google-explicit-constructor): as matchers do.
    return negation;
  }

 private:
  vestra::testkit::RunMatcher<Check> negation;
};
/// @endcond

namespace vestra::testkit {

struct WasSentCheck {
  Verdict operator()(const HostRun& run, std::ostream& reason) const {
    if (run.answer == true && !run.reports.empty()) {
      reason << "with " << run.reports.size() << " report(s)";
      return Verdict::MATCHES;
    }
    reason << whyNotSent(run);
    return run.endedWell() ? Verdict::DIFFERS : Verdict::CANNOT_TELL;
  }
  static void describe(std::ostream& out, bool negated) {
    out << (negated ? "was not sent" : "was sent, with a report of the main design tool");
  }
};

/// `send` gave true and the main design tool reported.
inline RunMatcher<WasSentCheck> WasSent() { return RunMatcher(WasSentCheck()); }

/// The text of a number as hosts write it; any other value as it is.
template <typename Value>
auto textOrMatcher(const Value& value) {
  if constexpr (std::is_arithmetic_v<Value>) {
    std::ostringstream text;
    text.imbue(std::locale::classic());
    text << value;
    return text.str();
  } else {
    return value;
  }
}

class HasItemCheck {
 public:
  HasItemCheck(Oza::Vestra::SectionType theSection, std::string theKey,
               testing::Matcher<std::string> theValue)
      : section(theSection), key(std::move(theKey)), value(std::move(theValue)) {}

  Verdict operator()(const HostRun& run, std::ostream& reason) const {
    if (!run.hasScript()) {
      reason << "which has no script to look into, " << whyNotSent(run);
      return Verdict::CANNOT_TELL;
    }
    reason << whatIsThere(run, section, key);
    const auto values = run.values(section, key);
    const bool matches = std::any_of(values.begin(), values.end(),
                                     [&](const std::string& each) { return value.Matches(each); });
    return matches ? Verdict::MATCHES : Verdict::DIFFERS;
  }

  void describe(std::ostream& out, bool negated) const {
    out << (negated ? "has no" : "has an") << " item \"" << key << "\" in " << contextOf(section)
        << " whose value ";
    value.DescribeTo(&out);
  }

 private:
  Oza::Vestra::SectionType section;
  std::string key;
  testing::Matcher<std::string> value;
};

/// The section has an item with this key whose value matches.
///
/// @param value  a text, a number or a matcher
template <typename Value>
RunMatcher<HasItemCheck> HasItem(Oza::Vestra::SectionType section, const std::string& key,
                                 const Value& value) {
  return RunMatcher(HasItemCheck(section, key, testing::SafeMatcherCast<std::string>(textOrMatcher(value))));
}

/// The same for a text.
inline RunMatcher<HasItemCheck> HasItem(Oza::Vestra::SectionType section, const std::string& key,
                                        const char* value) {
  return RunMatcher(HasItemCheck(section, key, testing::Matcher<std::string>(value)));
}

struct HasNoHazardsCheck {
  Verdict operator()(const HostRun& run, std::ostream& reason) const {
    if (!run.hasScript()) {
      reason << "which has no script to look into, " << whyNotSent(run);
      return Verdict::CANNOT_TELL;
    }
    const auto hazards = run.hazards();
    reason << (hazards.empty() ? "without hazards" : "with hazards:");
    for (const auto& hazard : hazards) {
      reason << "\n  " << hazard;
    }
    return hazards.empty() ? Verdict::MATCHES : Verdict::DIFFERS;
  }
  static void describe(std::ostream& out, bool negated) {
    out << (negated ? "has hazards" : "has no hazards");
  }
};

/// The design tool reads every item as the host handed it over.
inline RunMatcher<HasNoHazardsCheck> HasNoHazards() { return RunMatcher(HasNoHazardsCheck()); }

class ThrewCheck {
 public:
  ThrewCheck(std::string theType, testing::Matcher<std::string> theText)
      : type(std::move(theType)), text(std::move(theText)) {}

  Verdict operator()(const HostRun& run, std::ostream& reason) const {
    reason << endOf(run);
    return run.exception && isOfType(*run.exception) && text.Matches(run.exception->text) ? Verdict::MATCHES
                                                                                          : Verdict::DIFFERS;
  }

  void describe(std::ostream& out, bool negated) const {
    out << (negated ? "did not throw " : "threw ") << type << " whose text ";
    text.DescribeTo(&out);
  }

 private:
  bool isOfType(const Exception& exception) const {
    return exception.type == type ||
           std::find(exception.bases.begin(), exception.bases.end(), type) != exception.bases.end();
  }

  std::string type;
  testing::Matcher<std::string> text;
};

/// The host's code let an exception of this type, or of one derived from it, out.
///
/// @param text  of the exception: a text or a matcher
template <typename Type, typename Text = testing::Matcher<std::string>>
RunMatcher<ThrewCheck> Threw(const Text& text = testing::_) {
  return RunMatcher(ThrewCheck(nameOf(typeid(Type)), testing::SafeMatcherCast<std::string>(text)));
}

/// The same for a type that the test does not know.
///
/// @param type  its name as C++ writes it
template <typename Text>
RunMatcher<ThrewCheck> Threw(const std::string& type, const Text& text) {
  return RunMatcher(ThrewCheck(type, testing::SafeMatcherCast<std::string>(text)));
}

struct EndedQuietlyCheck {
  Verdict operator()(const HostRun& run, std::ostream& reason) const {
    const bool isQuiet = run.output.empty() && run.errorOutput.empty();
    reason << endOf(run) << (isQuiet ? "" : ", and which printed");
    return run.exitStatus == 0 && isQuiet ? Verdict::MATCHES : Verdict::DIFFERS;
  }
  static void describe(std::ostream& out, bool negated) {
    out << (negated ? "did not end quietly" : "ended by itself and printed nothing");
  }
};

/// No signal, no time-out, and nothing printed but by the tool.
inline RunMatcher<EndedQuietlyCheck> EndedQuietly() { return RunMatcher(EndedQuietlyCheck()); }

}  // namespace vestra::testkit

#endif
