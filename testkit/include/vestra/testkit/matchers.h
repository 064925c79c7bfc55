#ifndef VESTRA_TESTKIT_MATCHERS_H
#define VESTRA_TESTKIT_MATCHERS_H

#include <algorithm>
#include <functional>
#include <limits>
#include <locale>
#include <ostream>
#include <sstream>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include <gmock/gmock.h>

#include <vestra/testkit/google_test.h>
#include <vestra/testkit/host_run.h>

/// GoogleTest matchers of a `HostRun`. A failure says the reason first and then what may be wrong with
/// the run, in 25 lines at most; print the run to see all of it.
///
/// Where a run cannot tell, neither a matcher nor its negation matches: of a host that crashed, which
/// only `EndedQuietly` judges; of a host that threw, `WasSent`; of an unsound run, everything; and
/// what is said of a script, a report or sends where there are none. `Not` keeps to that around
/// composed and stored matchers and containers of runs as well, and `Value` fails the test there. `Times(0)`
/// does not: write `Not(Contains(…))`.
namespace vestra::testkit {

/// What a check makes of a run.
enum class Verdict { MATCHES, DIFFERS, CANNOT_TELL };

/// Of the summary in a failure, which the reason and GoogleTest's own lines precede.
constexpr std::size_t SUMMARY_LINES = 12;

/// A check of a run with what it says in words, as GoogleTest takes it.
class RunCheck {
 public:
  /// Writes the reason of its verdict.
  using Check = std::function<Verdict(const HostRun& run, std::ostream& reason)>;

  RunCheck(std::string whatMatches, std::string whatDiffers, Check whatIsChecked)
      : description(std::move(whatMatches)),
        negated(std::move(whatDiffers)),
        check(std::move(whatIsChecked)) {}

  bool MatchAndExplain(const HostRun& run, testing::MatchResultListener* listener) const {
    std::ostringstream reason;
    const Verdict verdict = verdictOn(run, reason);
    metUncertainty() = metUncertainty() || verdict == Verdict::CANNOT_TELL || run.crashed();
    if (listener->IsInterested()) {
      *listener << explanation(reason.str(), verdict == wanted, run);
    }
    return verdict == wanted;
  }

  /// Matches the runs that differ, and none of which this cannot tell.
  RunCheck negation() const {
    RunCheck other(negated, description, check);
    other.wanted = wanted == Verdict::MATCHES ? Verdict::DIFFERS : Verdict::MATCHES;
    return other;
  }

  void DescribeTo(std::ostream* out) const { *out << description; }
  void DescribeNegationTo(std::ostream* out) const { *out << negated; }

  /// Whether a check has met a run that it could not judge, since this was last made false.
  static bool& metUncertainty() {
    static thread_local bool met = false;
    return met;
  }

 private:
  Verdict verdictOn(const HostRun& run, std::ostream& reason) const {
    if (!run.unsoundness.empty()) {
      reason << "which proves nothing, as " << run.unsoundness.front();
      return Verdict::CANNOT_TELL;
    }
    return check(run, reason);
  }

  static std::string explanation(std::string reason, bool isWanted, const HostRun& run) {
    constexpr std::ptrdiff_t LINES = 8;
    const std::ptrdiff_t lines = 1 + std::count(reason.begin(), reason.end(), '\n');
    for (std::ptrdiff_t left = lines; left > LINES; --left) {
      reason.resize(reason.rfind('\n'));
    }
    reason += lines > LINES ? "\n  and " + std::to_string(lines - LINES) + " more" : "";
    return isWanted ? reason : reason + "\n" + summaryOf(run, SUMMARY_LINES);
  }

  std::string description;
  std::string negated;
  Check check;
  Verdict wanted = Verdict::MATCHES;
};

/// A matcher of runs.
using RunMatcher = testing::PolymorphicMatcher<RunCheck>;

/// @cond
/// `Not` of whatever is made of such matchers: does not match where one of them met a run that it
/// could not judge.
template <typename Matched>
class CertainNot : public testing::MatcherInterface<const Matched&> {
 public:
  explicit CertainNot(testing::Matcher<Matched> whatIsNegated) : matcher(std::move(whatIsNegated)) {}

  bool MatchAndExplain(const Matched& matched, testing::MatchResultListener* listener) const override {
    const bool metBefore = std::exchange(RunCheck::metUncertainty(), false);
    const bool matches = matcher.MatchAndExplain(matched, listener);
    const bool isCertain = !RunCheck::metUncertainty();
    RunCheck::metUncertainty() = metBefore || !isCertain;
    if (matches && listener->IsInterested()) {
      show(matched, *listener);
    }
    return !matches && isCertain;
  }

  void DescribeTo(std::ostream* out) const override { matcher.DescribeNegationTo(out); }
  void DescribeNegationTo(std::ostream* out) const override { matcher.DescribeTo(out); }

 private:
  static void show(const HostRun& run, testing::MatchResultListener& listener) {
    listener << "\n" << summaryOf(run, SUMMARY_LINES);
  }
  template <typename Runs>
  static void show(const Runs&, testing::MatchResultListener&) {}

  testing::Matcher<Matched> matcher;
};

/// @endcond

}  // namespace vestra::testkit

/// @cond
// GoogleTest negates whatever a matcher gives, which is wrong where a run cannot tell.
namespace testing {

/// As GoogleTest's, but fails the test where a run cannot tell: neither true nor false is right then.
template <typename RunMatcher>
bool Value(const vestra::testkit::HostRun& run, RunMatcher matcher) {
  using vestra::testkit::RunCheck;
  const bool metBefore = std::exchange(RunCheck::metUncertainty(), false);
  const bool matches = SafeMatcherCast<const vestra::testkit::HostRun&>(matcher).Matches(run);
  if (std::exchange(RunCheck::metUncertainty(), metBefore) && !matches) {
    ADD_FAILURE() << "Value() of a run that cannot tell:\n" << summaryOf(run, vestra::testkit::SUMMARY_LINES);
  }
  return matches;
}

namespace internal {

template <>
class NotMatcher<vestra::testkit::RunMatcher> {
 public:
  explicit NotMatcher(const vestra::testkit::RunMatcher& matcher)
      : negation(MakePolymorphicMatcher(matcher.impl().negation())) {}

  template <typename Run>
  operator Matcher<Run>() const {  // NOLINT(google-explicit-constructor): as matchers do.
    return negation;
  }

 private:
  vestra::testkit::RunMatcher negation;
};

template <>
class NotMatcherImpl<vestra::testkit::HostRun>
    : public vestra::testkit::CertainNot<vestra::testkit::HostRun> {
  using CertainNot::CertainNot;
};

template <>
class NotMatcherImpl<const vestra::testkit::HostRun&>
    : public vestra::testkit::CertainNot<const vestra::testkit::HostRun&> {
  using CertainNot::CertainNot;
};

template <template <typename...> class Container, typename... More>
class NotMatcherImpl<Container<vestra::testkit::HostRun, More...>>
    : public vestra::testkit::CertainNot<Container<vestra::testkit::HostRun, More...>> {
  using vestra::testkit::CertainNot<Container<vestra::testkit::HostRun, More...>>::CertainNot;
};

template <template <typename...> class Container, typename... More>
class NotMatcherImpl<const Container<vestra::testkit::HostRun, More...>&>
    : public vestra::testkit::CertainNot<const Container<vestra::testkit::HostRun, More...>&> {
  using vestra::testkit::CertainNot<const Container<vestra::testkit::HostRun, More...>&>::CertainNot;
};

}  // namespace internal
}  // namespace testing
/// @endcond

namespace vestra::testkit {

/// A verdict on what a host that crashed or threw might have done later.
inline Verdict verdictOnSome(bool matches, const HostRun& run) {
  return matches ? Verdict::MATCHES : run.endedWell() ? Verdict::DIFFERS : Verdict::CANNOT_TELL;
}

/// A verdict on everything that the host does.
inline Verdict verdictOnAll(bool matches, const HostRun& run) {
  return run.endedWell() ? verdictOnSome(matches, run) : Verdict::CANNOT_TELL;
}

/// A check of what was written or reported, which needs a script.
inline RunCheck::Check whereThereIsAScript(RunCheck::Check check) {
  return [check = std::move(check)](const HostRun& run, std::ostream& reason) {
    if (run.hasScript()) {
      return check(run, reason);
    }
    reason << "which has no script to look into, " << whyNotSent(run);
    return Verdict::CANNOT_TELL;
  };
}

/// What the matcher says of what it matches or, negated, does not match.
template <typename Matcher>
std::string descriptionOf(const Matcher& matcher, bool isNegated = false) {
  std::ostringstream text;
  isNegated ? matcher.DescribeNegationTo(&text) : matcher.DescribeTo(&text);
  return text.str();
}

/// A `send` gave true and the main design tool reported. Whatever else the host does before or after
/// that changes nothing, unless it crashes or throws.
inline RunMatcher WasSent() {
  const auto check = [](const HostRun& run, std::ostream& reason) {
    const bool isSent = !run.reports.empty() && std::any_of(run.sends.begin(), run.sends.end(),
                                                            [](auto& send) { return send.answer == true; });
    if (!run.endedWell() || !isSent) {
      reason << whyNotSent(run);
      return run.endedWell() && run.reports.empty() ? Verdict::DIFFERS : Verdict::CANNOT_TELL;
    }
    reason << "which sent " << run.reports.size() << " report(s), and " << endOf(run);
    return Verdict::MATCHES;
  };
  return testing::MakePolymorphicMatcher(
      RunCheck("was sent, with a report of the main design tool", "was not sent", check));
}

/// Whether the list matches; the reason shows it.
template <typename List>
bool isList(const List& list, const std::string& what, const testing::Matcher<const List&>& matcher,
            std::ostream& reason) {
  testing::StringMatchResultListener listener;
  const bool matches = matcher.MatchAndExplain(list, &listener);
  const std::string explanation = listener.str();
  reason << "whose " << what << " are " << testing::PrintToString(list) << (explanation.empty() ? "" : ", ")
         << explanation;
  return matches;
}

/// What the host asked `send` for and got, in order, matches.
///
/// @param sends  of a `std::vector<Send>`: `ElementsAre(Send{sandbox.project(), Vestra::KELVO, true})`
template <typename Sends>
RunMatcher SendsAre(const Sends& sends) {
  const auto matcher = testing::SafeMatcherCast<const std::vector<Send>&>(sends);
  const auto check = [matcher](const HostRun& run, std::ostream& reason) {
    return verdictOnSome(isList(run.sends, "sends", matcher, reason), run);
  };
  const std::string begin = "has sends, a list that ";
  return testing::MakePolymorphicMatcher(
      RunCheck(begin + descriptionOf(matcher), begin + descriptionOf(matcher, true), check));
}

/// The texts of a number as hosts write it, into a stream with enough digits to be read back: as few as
/// that takes, or as many as there are. A byte is a number.
template <typename Number>
testing::Matcher<std::string> textOf(Number number) {
  const auto textWith = [number](int digits) {
    std::ostringstream text;
    text.imbue(std::locale::classic());
    text.precision(digits);
    if constexpr (std::is_same_v<Number, signed char> || std::is_same_v<Number, unsigned char>) {
      text << int{number};
    } else {
      text << number;
    }
    return text.str();
  };
  if constexpr (std::is_floating_point_v<Number>) {
    const auto isReadBack = [number](const std::string& text) {
      std::istringstream in(text);
      in.imbue(std::locale::classic());
      Number read{};
      return in >> read && read == number;
    };
    int digits = 6;
    while (digits < std::numeric_limits<Number>::max_digits10 && !isReadBack(textWith(digits))) {
      ++digits;
    }
    const std::string longest = textWith(std::numeric_limits<Number>::max_digits10);
    return testing::AnyOf(textWith(digits), longest);
  } else {
    return textWith(6);
  }
}

/// A text or a matcher of one, or a number.
template <typename Value>
testing::Matcher<std::string> textMatcher(const Value& value) {
  if constexpr (std::is_arithmetic_v<Value>) {
    return textOf(value);
  } else if constexpr (std::is_convertible_v<const Value&, std::string>) {
    return std::string(value);
  } else {
    return testing::SafeMatcherCast<std::string>(value);
  }
}

/// The section has an item with this key whose value matches.
///
/// @param wanted  a text, a number or a matcher
template <typename Value>
RunMatcher HasItem(Oza::Vestra::SectionType section, const std::string& key, const Value& wanted) {
  const testing::Matcher<std::string> value = textMatcher(wanted);
  const auto check = [=, context = contextOf(section)](const HostRun& run, std::ostream& reason) {
    const auto isIn = [&](const std::vector<Item>& items) {
      return std::any_of(items.begin(), items.end(), [&](const Item& item) {
        return item.context == context && item.key == key && value.Matches(item.value);
      });
    };
    reason << whatIsThere(run, section, key);
    const bool isThere = run.reports.empty()
                             ? isIn(run.writtenItems)
                             : std::any_of(run.reports.begin(), run.reports.end(),
                                           [&](const Report& each) { return isIn(each.items); });
    return verdictOnSome(isThere, run);
  };
  const std::string item =
      " item \"" + key + "\" in " + contextOf(section) + " whose value " + descriptionOf(value);
  return testing::MakePolymorphicMatcher(
      RunCheck("has an" + item, "has no" + item, whereThereIsAScript(check)));
}

/// The section's items, in order, match.
///
/// @param items  of a list of keys with their values: `ElementsAre(Pair("runs", "2"))`
template <typename Items>
RunMatcher ItemsAre(Oza::Vestra::SectionType section, const Items& items) {
  using List = std::vector<std::pair<std::string, std::string>>;
  const auto matcher = testing::SafeMatcherCast<const List&>(items);
  const auto check = [=](const HostRun& run, std::ostream& reason) {
    List list;
    for (const Item& item : run.items(section)) {
      list.emplace_back(item.key, item.value);
    }
    return verdictOnSome(isList(list, "items in " + contextOf(section), matcher, reason), run);
  };
  const std::string begin = "has items in " + contextOf(section) + ", a list that ";
  return testing::MakePolymorphicMatcher(RunCheck(
      begin + descriptionOf(matcher), begin + descriptionOf(matcher, true), whereThereIsAScript(check)));
}

/// Whether there is nothing of the kind; otherwise the reason lists it.
template <typename Elements>
bool isNone(const Elements& elements, const char* what, std::ostream& reason) {
  constexpr std::size_t LENGTH = 300;
  reason << (elements.empty() ? "without " : "with ") << what << (elements.empty() ? "" : ":");
  for (const auto& element : elements) {
    std::ostringstream line;
    line << element;
    reason << "\n  " << line.str().substr(0, LENGTH);
  }
  return elements.empty();
}

/// Everything reaches the shell and the design tool as the host handed it over.
inline RunMatcher HasNoHazards() {
  const auto check = [](const HostRun& run, std::ostream& reason) {
    return verdictOnAll(isNone(run.hazards(), "hazards", reason), run);
  };
  return testing::MakePolymorphicMatcher(
      RunCheck("has no hazards", "has hazards", whereThereIsAScript(check)));
}

/// The design tool reported and found nothing suspicious.
inline RunMatcher HasNoWarnings() {
  const auto check = [](const HostRun& run, std::ostream& reason) {
    if (run.report() == nullptr) {
      reason << "which has no report to look into, " << whyNotSent(run);
      return Verdict::CANNOT_TELL;
    }
    return verdictOnAll(isNone(run.report()->warnings, "warnings", reason), run);
  };
  return testing::MakePolymorphicMatcher(RunCheck("has no warnings", "has warnings", check));
}

/// No sanitizer found anything in the host.
inline RunMatcher HasNoSanitizerFindings() {
  const auto check = [](const HostRun& run, std::ostream& reason) {
    const bool isClean = isNone(run.sanitizerFindings(), "sanitizers' findings", reason);
    return isClean ? verdictOnAll(isClean, run) : Verdict::DIFFERS;
  };
  return testing::MakePolymorphicMatcher(
      RunCheck("has no sanitizers' findings", "has sanitizers' findings", check));
}

/// The host's code let an exception of this type, or of one derived from it, out.
///
/// @param wanted  the exception's text, or a matcher of it
template <typename Type, typename Text = testing::Matcher<std::string>>
RunMatcher Threw(const Text& wanted = testing::_) {
  const auto text = testing::SafeMatcherCast<std::string>(wanted);
  const auto check = [text, type = nameOf(typeid(Type))](const HostRun& run, std::ostream& reason) {
    reason << endOf(run);
    if (!run.exception) {
      return run.crashed() ? Verdict::CANNOT_TELL : Verdict::DIFFERS;
    }
    const std::vector<std::string>& bases = run.exception->bases;
    const bool isOfType =
        run.exception->type == type || std::find(bases.begin(), bases.end(), type) != bases.end();
    return isOfType && text.Matches(run.exception->text) ? Verdict::MATCHES : Verdict::DIFFERS;
  };
  const std::string exception = nameOf(typeid(Type)) + " whose text " + descriptionOf(text);
  return testing::MakePolymorphicMatcher(RunCheck("threw " + exception, "did not throw " + exception, check));
}

/// The host ended by itself, with status 0 and all its processes; nothing was printed but by the tool,
/// and no sanitizer found anything.
inline RunMatcher EndedQuietly() {
  const auto check = [](const HostRun& run, std::ostream& reason) {
    const bool isSilent = run.output.empty() && run.errorOutput.empty();
    const auto findings = run.sanitizerFindings();
    reason << endOf(run) << (findings.empty() ? "" : ", in which a sanitizer found " + findings.front())
           << (run.outlivingProcesses.empty() ? "" : ", and whose processes outlived it")
           << (isSilent ? "" : ", and which printed");
    return run.exitStatus == 0 && !run.timedOut && isSilent && findings.empty() &&
                   run.outlivingProcesses.empty()
               ? Verdict::MATCHES
               : Verdict::DIFFERS;
  };
  return testing::MakePolymorphicMatcher(
      RunCheck("ended by itself and printed nothing", "did not end quietly", check));
}

}  // namespace vestra::testkit

#endif
