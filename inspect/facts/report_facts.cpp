#include "facts/report_facts.h"

#include <algorithm>
#include <cctype>
#include <map>
#include <set>
#include <string_view>
#include <utility>

#include "data/crc32.h"
#include "handler/time_stamp.h"
#include "reading/hazard.h"

namespace vestra::inspect {
namespace {

constexpr const char* INIT = "vestra_init -vestra_dir ";
constexpr const char* REGISTER = "vestra_register_client -client ";
constexpr const char* TRANSMIT = "\nvestra_transmit -clientid ";
constexpr std::int64_t SECONDS_PER_HOUR = 3600;
// The file's time is told by the file system, the hour in the time zone of the host.
constexpr std::int64_t HOURS_AROUND = 36;
// A file's time may be any number; localtime knows these years.
constexpr std::int64_t LAST_SECOND = 253402300799;

/// The text between two marks; empty when they are not there.
std::string between(const std::string& text, std::size_t from, const std::string& begin,
                    const std::string& end) {
  const std::size_t start = text.find(begin, from);
  if (start == std::string::npos) {
    return {};
  }
  const std::size_t first = start + begin.size();
  const std::size_t last = text.find(end, first);
  return last == std::string::npos ? std::string() : text.substr(first, last - first);
}

void readTransmission(const std::string& text, ReportFacts& report) {
  const std::size_t transmit = text.rfind(TRANSMIT);
  report.isComplete =
      transmit != std::string::npos && text.find("\nvestra_terminate\n", transmit) != std::string::npos;
  if (transmit != std::string::npos) {
    report.checksum = between(text, transmit, TRANSMIT, " -regid \"");
    report.registration = between(text, transmit, " -regid \"", "\" -xml ");
  }
}

std::string productOf(const ReportFacts& report) {
  const bool isSimulator = report.file.path.find("tavlo_vestra") == std::string::npos &&
                           report.file.text->find("\"<H3>TAVLO ") == std::string::npos;
  return isSimulator ? "KELVO" : "TAVLO";
}

bool isWordByte(char byte) { return std::isalnum(static_cast<unsigned char>(byte)) != 0 || byte == '_'; }

/// Whether the name stands in the text by itself, not as a part of a longer word.
bool holdsWord(const std::string& text, const std::string& name) {
  if (name.size() < 2) {
    return false;
  }
  for (std::size_t found = text.find(name); found != std::string::npos; found = text.find(name, found + 1)) {
    const std::size_t end = found + name.size();
    const bool begins = found == 0 || !isWordByte(text[found - 1]) || !isWordByte(name.front());
    const bool ends = end == text.size() || !isWordByte(text[end]) || !isWordByte(name.back());
    if (begins && ends) {
      return true;
    }
  }
  return false;
}

bool holdsMailAddress(const std::string& text) {
  const std::size_t at = text.find('@');
  return at != std::string::npos && at > 0 && isWordByte(text[at - 1]) && at + 1 < text.size() &&
         isWordByte(text[at + 1]) && text.find('.', at) != std::string::npos;
}

std::vector<std::string> personalIn(const std::string& value, const PersonFacts& person) {
  std::vector<std::string> found;
  const std::vector<std::pair<const char*, std::string>> names = {{"your login name", person.login},
                                                                  {"your home directory", person.home},
                                                                  {"this machine's name", person.hostName},
                                                                  {"your full name", person.fullName}};
  for (const auto& [what, name] : names) {
    if (name != "/" && holdsWord(value, name)) {
      found.emplace_back(what);
    }
  }
  if (holdsMailAddress(value)) {
    found.emplace_back("an e-mail address");
  }
  return found;
}

void readItems(const std::string& text, const PersonFacts& person, ReportFacts& report) {
  std::set<std::pair<std::string, std::string>> keys;
  for (reading::WrittenItem& written : reading::itemsWrittenIn(text)) {
    ReportedItem item;
    item.hazard = reading::hazardOf(written);
    item.isRepeated = !keys.emplace(written.context, written.key).second;
    item.isIdentifier =
        written.client == "project" &&
        (written.key == "project_id" || written.key == "random_id" || written.key == "registration_id");
    item.personal = personalIn(written.value, person);
    item.written = std::move(written);
    report.items.push_back(std::move(item));
  }
}

/// The registrations by their line, without those that an item's own text imitates.
std::map<std::size_t, std::string> registrationsIn(const std::string& text, const ReportFacts& report) {
  std::map<std::size_t, std::string> found;
  const std::vector<std::string> lines = linesOf(text);
  for (std::size_t i = 0; i < lines.size(); ++i) {
    if (lines[i].rfind(REGISTER, 0) == 0) {
      found.emplace(i + 1, lines[i].substr(std::string_view(REGISTER).size()));
    }
  }
  for (const ReportedItem& item : report.items) {
    const std::string command = reading::scriptLineOf(item.written);
    const auto length = static_cast<std::size_t>(std::count(command.begin(), command.end(), '\n'));
    found.erase(found.lower_bound(item.written.line), found.lower_bound(item.written.line + length));
  }
  return found;
}

/// What the checksum is made of, but for the hour.
std::string checksumText(const ReportFacts& report, std::map<std::size_t, std::string> registrations) {
  std::string text;
  for (const ReportedItem& item : report.items) {
    const reading::WrittenItem& written = item.written;
    while (!registrations.empty() && registrations.begin()->first < written.line) {
      text += registrations.begin()->second;
      registrations.erase(registrations.begin());
    }
    text += written.key + written.value + written.client + written.context;
  }
  for (const auto& [line, client] : registrations) {
    text += client;
  }
  return text;
}

std::optional<std::int64_t> hourOf(const std::string& checksum, const std::string& text,
                                   std::int64_t around) {
  for (std::int64_t distance = 0; distance <= HOURS_AROUND; ++distance) {
    for (const std::int64_t hour :
         {around - distance * SECONDS_PER_HOUR, around + distance * SECONDS_PER_HOUR}) {
      if (std::to_string(Oza::crc32((Oza::timeStamp(hour) + text).c_str())) == checksum) {
        return hour;
      }
    }
  }
  return std::nullopt;
}

void noteLostClients(const std::map<std::size_t, std::string>& registrations, ReportFacts& report) {
  std::set<std::string> known;
  for (const auto& [line, client] : registrations) {
    known.insert(client);
  }
  for (const ReportedItem& item : report.items) {
    if (known.insert(item.written.client).second) {
      report.lostClients.push_back(item.written.client);
    }
  }
}

}  // namespace

std::string ReportFacts::projectFact(const std::string& key) const {
  for (const ReportedItem& item : items) {
    if (item.written.key == key && item.written.context == "software_version_and_target_device") {
      return item.written.value;
    }
  }
  return {};
}

std::size_t ReportFacts::hazardCount() const {
  return static_cast<std::size_t>(std::count_if(
      items.begin(), items.end(), [](const ReportedItem& item) { return item.hazard.has_value(); }));
}

bool looksLikeScript(const std::string& text) {
  return text.rfind(INIT, 0) == 0 || text.find("\nvestra_add_data ") != std::string::npos;
}

ReportFacts readReport(FileSnapshot file, const PersonFacts& person) {
  ReportFacts report;
  report.file = std::move(file);
  const std::string& text = *report.file.text;
  report.product = productOf(report);
  report.directory = text.rfind(INIT, 0) == 0 ? between(text, 0, INIT, "\n") : "";
  readTransmission(text, report);
  readItems(text, person, report);
  const auto registrations = registrationsIn(text, report);
  noteLostClients(registrations, report);
  if (!report.checksum.empty()) {
    report.checksumHour = hourOf(report.checksum, checksumText(report, registrations),
                                 std::clamp<std::int64_t>(report.file.modified, 0, LAST_SECOND));
  }
  return report;
}

}  // namespace vestra::inspect
