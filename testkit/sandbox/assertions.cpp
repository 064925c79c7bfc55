#include "sandbox/assertions.h"

#include <optional>
#include <stdexcept>

#include <vestra/testkit/test_framework.h>

#include "intercept/fields.h"
#include "recorder/bytes.h"
#include "recorder/recording.h"

namespace vestra::testkit {

namespace {

constexpr const char* RECORD = "assertions";
constexpr std::size_t FIELDS = 3;

std::optional<TestFramework>& knownFramework() {
  static std::optional<TestFramework> known;
  return known;
}

void noteAssertion(const FailedAssertion& assertion) {
  note(RECORD, {assertion.file, std::to_string(assertion.line), assertion.text});
}

bool endsWith(const std::string& line, const std::string& end) {
  return line.size() > end.size() && line.compare(line.size() - end.size(), end.size(), end) == 0;
}

/// Whether GoogleTest, Catch2, doctest or Boost.Test says in this line that an assertion has failed.
bool tellsOfFailure(const std::string& line) {
  return endsWith(line, ": Failure") || endsWith(line, ": FAILED:") || endsWith(line, " is NOT correct!") ||
         line.find(": error: in \"") != std::string::npos;
}

void refuseUnnoticedAssertion(const std::string& output) {
  for (const std::string& line : linesOf(output)) {
    if (tellsOfFailure(line)) {
      throw std::runtime_error("an assertion failed in the host's process, where it cannot fail the test: " +
                               output.substr(output.find(line)) +
                               "include <vestra/testkit/matchers.h>, which brings it to the test, or make "
                               "another framework than GoogleTest known with useTestFramework");
    }
  }
}

}  // namespace

bool useTestFramework(const TestFramework& framework) {
  knownFramework() = framework;
  return true;
}

void watchAssertions() {
  if (knownFramework()) {
    knownFramework()->watch(noteAssertion);
  }
}

std::vector<FailedAssertion> failAsRecorded(const std::string& directory, const std::string& output) {
  if (!knownFramework()) {
    refuseUnnoticedAssertion(output);
    return {};
  }
  std::vector<FailedAssertion> assertions;
  const auto fields = intercept::fieldsIn(bytesOf(directory + "/" + RECORD).value_or(""));
  for (std::size_t i = 0; i + FIELDS <= fields.size(); i += FIELDS) {
    assertions.push_back({fields[i], std::stoi(fields[i + 1]), fields[i + 2]});
    knownFramework()->fail(assertions.back());
  }
  return assertions;
}

bool hasCurrentTestFailed() { return knownFramework() && knownFramework()->hasFailed(); }

}  // namespace vestra::testkit
