#include "facts/user_facts.h"

#include <unistd.h>

#include <array>
#include <map>

#include <boost/algorithm/string/classification.hpp>
#include <boost/algorithm/string/split.hpp>

#include "files/path_text.h"
#include "identity/vestra_setting.h"

namespace vestra::inspect {
namespace {

using Properties = std::map<std::string, std::string>;

Properties propertiesOf(const std::string& text) {
  Properties properties;
  Oza::readSettings(text, properties);
  return properties;
}

/// The first line that by itself gives the key.
std::size_t lineOf(const std::vector<std::string>& lines) {
  for (std::size_t i = 0; i < lines.size(); ++i) {
    if (propertiesOf(lines[i]).count("RandomID") != 0) {
      return i + 1;
    }
  }
  return 0;
}

std::string whatIsKnown(const Properties& properties) {
  const auto found = properties.find("RandomID");
  return found == properties.end() ? std::string() : found->second;
}

/// Whether a line that the next run appends is the one that the run after it reads.
bool isFoundAgain(const std::string& text) {
  const auto found = propertiesOf(text + "RandomID=new\n");
  return whatIsKnown(found) == "new";
}

}  // namespace

bool isPlainNumber(const std::string& text) {
  const std::size_t digits = text.rfind('-', 0) == 0 ? 1 : 0;
  return text.size() > digits && text.find_first_not_of("0123456789", digits) == std::string::npos;
}

std::vector<std::string> linesOf(const std::string& text) {
  std::vector<std::string> lines;
  boost::algorithm::split(lines, text, boost::algorithm::is_any_of("\n"));
  if (lines.back().empty()) {
    lines.pop_back();
  }
  return lines;
}

UserFacts lookAtUser(const HostContext& context) {
  UserFacts user;
  user.file = readFileAt(context.settingsPath(), LARGEST_RECORD);
  const std::string text = user.file.text.value_or("");
  user.randomId = whatIsKnown(propertiesOf(text));
  user.line = lineOf(linesOf(text));
  if (!user.randomId.empty()) {
    return user;
  }
  const bool canBeWritten =
      user.file.kind == FileKind::missing
          ? canHoldFiles(Oza::directoryOfFile(user.file.path), user.obstacle) &&
                (!user.file.link || canCreateTarget(user.file))
          : user.file.writable && (user.file.isRegular() || user.file.kind == FileKind::device);
  user.makesNew = canBeWritten;
  user.keepsNew =
      canBeWritten && (user.file.kind == FileKind::missing || (user.file.text && isFoundAgain(text)));
  return user;
}

// Asking the C library could open a connection to a name service.
PersonFacts lookAtPerson(const HostContext& context) {
  PersonFacts person;
  person.home = context.variable("HOME");
  for (const std::string& line : linesOf(readFileAt("/etc/passwd", LARGEST_RECORD).text.value_or(""))) {
    std::vector<std::string> fields;
    boost::algorithm::split(fields, line, boost::algorithm::is_any_of(":"));
    if (fields.size() > 5 && fields[2] == std::to_string(geteuid())) {
      person.login = fields[0];
      person.fullName = fields[4].substr(0, fields[4].find(','));
    }
  }
  for (const char* variable : {"USER", "LOGNAME"}) {
    if (context.isSwitchedOn(variable)) {
      person.login = context.variable(variable);
    }
  }
  std::array<char, 256> name{};
  if (gethostname(name.data(), name.size() - 1) == 0) {
    person.hostName = name.data();
  }
  return person;
}

}  // namespace vestra::inspect
