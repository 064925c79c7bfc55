#include "identity/project_identity.h"

#include <sstream>
#include <stdexcept>
#include <utility>

#include "files/read_line.h"

namespace Oza {
namespace {

constexpr std::int64_t NEVER = 0;

/// Reads one line and, unless it is empty, makes a number of it.
template <typename Number, typename Convert>
void readNumber(std::istream& in, Number& number, Convert convert) {
  std::string line;
  if (readLine(in, line) && !line.empty()) {
    number = static_cast<Number>(convert(line));
  }
}

std::int64_t ProjectIdentity::*slotOf(Vestra::ProductType product) {
  return product == Vestra::KELVO_ALT ? &ProjectIdentity::lastSendTimeType1
                                      : &ProjectIdentity::lastSendTimeDefault;
}

}  // namespace

void readProjectIdentity(std::istream& in, ProjectIdentity& identity) {
  const auto longNumber = [](const std::string& line) { return std::stoll(line); };
  const auto number = [](const std::string& line) { return std::stoi(line); };
  readNumber(in, identity.lastSendTimeDefault, longNumber);
  readNumber(in, identity.lastSendTimeType1, longNumber);
  readNumber(in, identity.iteration, longNumber);
  readNumber(in, identity.orbeloFlow, number);
  std::string line;
  if (readLine(in, line)) {
    identity.projectId = line;
  }
}

bool parseProjectIdentity(const std::string& text, ProjectIdentity& identity) {
  ProjectIdentity read = identity;
  std::istringstream in(text);
  try {
    readProjectIdentity(in, read);
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

// Compared without a difference of the two, which a stored time near the edge of
// its type would overflow.
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
