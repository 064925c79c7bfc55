#include "identity/project_identity.h"

#include <cstddef>
#include <stdexcept>
#include <utility>
#include <vector>

#include "identity/fields.h"

namespace Oza {
namespace {

constexpr std::int64_t NEVER = 0;

/// Makes a number of a line, unless the line is missing or empty.
template <typename Number, typename Convert>
void readNumber(const std::vector<std::string>& lines, std::size_t index, Number& number, Convert convert) {
  if (index < lines.size() && !lines[index].empty()) {
    number = static_cast<Number>(convert(lines[index]));
  }
}

std::int64_t ProjectIdentity::*slotOf(Vestra::ProductType product) {
  return product == Vestra::KELVO_ALT ? &ProjectIdentity::lastSendTimeType1
                                      : &ProjectIdentity::lastSendTimeDefault;
}

}  // namespace

void readProjectIdentity(const std::string& text, ProjectIdentity& identity) {
  const auto longNumber = [](const std::string& line) { return std::stoll(line); };
  const auto number = [](const std::string& line) { return std::stoi(line); };
  const std::vector<std::string> lines = fieldsOf(text, '\n');
  readNumber(lines, 0, identity.lastSendTimeDefault, longNumber);
  readNumber(lines, 1, identity.lastSendTimeType1, longNumber);
  readNumber(lines, 2, identity.iteration, longNumber);
  readNumber(lines, 3, identity.orbeloFlow, number);
  // No line follows the last line feed.
  if (lines.size() > 5 || (lines.size() == 5 && !lines[4].empty())) {
    identity.projectId = lines[4];
  }
}

bool parseProjectIdentity(const std::string& text, ProjectIdentity& identity) {
  ProjectIdentity read = identity;
  try {
    readProjectIdentity(text, read);
  } catch (const std::logic_error&) {
    return false;
  }
  identity = std::move(read);
  return true;
}

ProjectIdentity mergedWithStored(const ProjectIdentity& identity, const std::string& text,
                                 bool identifierIsHosts) {
  ProjectIdentity found = identity;
  parseProjectIdentity(text, found);
  if (identifierIsHosts || found.projectId.empty()) {
    found.projectId = identity.projectId;
  }
  return found;
}

std::string formatProjectIdentity(const ProjectIdentity& identity) {
  return std::to_string(identity.lastSendTimeDefault) + "\n" + std::to_string(identity.lastSendTimeType1) +
         "\n" + std::to_string(identity.iteration) + "\n" + std::to_string(identity.orbeloFlow) + "\n" +
         identity.projectId + "\n";
}

std::int64_t lastSendTime(const ProjectIdentity& identity, Vestra::ProductType product) {
  return identity.*slotOf(product);
}

// Not `now - last > SECONDS_PER_DAY`: that overflows for a stored time near the limits of
// its type.
bool isReportDue(const ProjectIdentity& identity, Vestra::ProductType product, std::int64_t now) {
  const std::int64_t last = lastSendTime(identity, product);
  return last == NEVER || last < now - SECONDS_PER_DAY;
}

bool countAttempt(ProjectIdentity& identity, Vestra::ProductType product, std::int64_t now) {
  const bool due = isReportDue(identity, product, now);
  if (due) {
    identity.*slotOf(product) = now;
  }
  ++identity.iteration;
  return due;
}

}  // namespace Oza
