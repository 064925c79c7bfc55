#include "facts/report_facts.h"

#include <algorithm>
#include <cctype>
#include <string_view>
#include <unordered_set>
#include <utility>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "data/crc32.h"
#include "handler/time_stamp.h"
#include "reading/hazard.h"
#include "reading/visible_text.h"

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
  const std::pair<const char*, const std::string*> names[] = {{"your login name", &person.login},
                                                              {"your home directory", &person.home},
                                                              {"this machine's name", &person.hostName},
                                                              {"your full name", &person.fullName}};
  for (const auto& [what, name] : names) {
    if (*name != "/" && holdsWord(value, *name)) {
      found.emplace_back(what);
    }
  }
  if (holdsMailAddress(value)) {
    found.emplace_back("an e-mail address");
  }
  return found;
}

ReportedItem judged(reading::WrittenItem written, const PersonFacts& person) {
  ReportedItem item;
  item.hazard = reading::hazardOf(written);
  item.isIdentifier =
      written.client == "project" &&
      (written.key == "project_id" || written.key == "random_id" || written.key == "registration_id");
  item.personal = personalIn(written.value, person);
  item.written = std::move(written);
  return item;
}

void count(ItemCount& counted, const ReportedItem& item, const std::string& what) {
  if (++counted.count == 1) {
    counted.first = fmt::format("{}: {} {}", item.written.line, reading::inQuotes(item.written.key), what);
  }
}

void note(const ReportedItem& item, ReportFacts& report) {
  const reading::WrittenItem& written = item.written;
  ++report.itemCount;
  if (written.context == "software_version_and_target_device") {
    report.project.emplace(written.key, written.value);
  }
  if (item.hazard) {
    count(report.hazards, item, *item.hazard);
  }
  if (!item.personal.empty()) {
    count(report.personal, item, fmt::format("holds {}", fmt::join(item.personal, ", ")));
  }
  if (item.isIdentifier && written.key != "registration_id" && written.value.empty()) {
    count(report.emptyIdentifiers, item, "is empty");
  }
}

/// The product of two polynomials over two elements, modulo that of the CRC-32, its bits reversed.
std::uint32_t multiplied(std::uint32_t one, std::uint32_t other) {
  std::uint32_t product = 0;
  for (std::uint32_t bit = 1U << 31U; bit != 0; bit >>= 1U) {
    product ^= (one & bit) != 0 ? other : 0;
    other = (other & 1U) != 0 ? (other >> 1U) ^ 0xEDB88320U : other >> 1U;
  }
  return product;
}

/// The checksum of a text that is read in pieces and stands behind an hour that is not known.
class ChecksumText {
 public:
  void append(std::string_view piece) {
    crc.append(piece);
    const std::size_t nul = piece.find('\0');
    length += hasEnded ? 0 : std::min(nul, piece.size());
    hasEnded = hasEnded || nul != std::string_view::npos;
  }

  void appendRegistrations(std::string_view text) {
    if (text.empty()) {
      return;
    }
    for (const std::string& line : linesOf(std::string(text))) {
      if (line.rfind(REGISTER, 0) == 0) {
        append(line.substr(std::string_view(REGISTER).size()));
      }
    }
  }

  void append(const reading::WrittenItem& item) {
    for (const std::string* text : {&item.key, &item.value, &item.client, &item.context}) {
      append(*text);
    }
  }

  /// The hour around a time with which the text has the checksum.
  std::optional<std::int64_t> hourOf(const std::string& checksum, std::int64_t around) const {
    const std::uint32_t shift = shiftByLength();
    for (std::int64_t distance = 0; distance <= 2 * HOURS_AROUND; ++distance) {
      const std::int64_t hours = distance % 2 == 0 ? distance / -2 : distance / 2 + 1;
      const std::int64_t hour = around + hours * SECONDS_PER_HOUR;
      const std::uint32_t begin = Oza::crc32(Oza::timeStamp(hour).c_str());
      if (std::to_string(multiplied(shift, begin) ^ crc.value()) == checksum) {
        return hour;
      }
    }
    return std::nullopt;
  }

 private:
  /// What a checksum is multiplied by when as many zero bytes follow: x to the power of their bits.
  std::uint32_t shiftByLength() const {
    std::uint32_t shift = 1U << 31U;
    std::uint32_t square = 1U << 23U;
    for (std::size_t rest = length; rest != 0; rest >>= 1U) {
      shift = (rest & 1U) != 0 ? multiplied(square, shift) : shift;
      square = multiplied(square, square);
    }
    return shift;
  }

  Oza::Crc32 crc;
  std::size_t length = 0;
  bool hasEnded = false;
};

}  // namespace

std::string ReportFacts::projectFact(const std::string& key) const {
  const auto found = project.find(key);
  return found == project.end() ? "" : found->second;
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
  ChecksumText checksum;
  const std::size_t behind =
      reading::forEachItemWrittenIn(text, [&](reading::WrittenItem written, std::string_view before) {
        checksum.appendRegistrations(before);
        checksum.append(written);
        note(judged(std::move(written), person), report);
      });
  checksum.appendRegistrations(std::string_view(text).substr(behind));
  if (!report.checksum.empty()) {
    report.checksumHour =
        checksum.hourOf(report.checksum, std::clamp<std::int64_t>(report.file.modified, 0, LAST_SECOND));
  }
  return report;
}

void forEachItem(const ReportFacts& report, const PersonFacts& person,
                 const std::function<void(const ReportedItem& item)>& use) {
  std::unordered_set<std::string> keys;
  reading::forEachItemWrittenIn(*report.file.text, [&](reading::WrittenItem written, std::string_view) {
    const bool isNew = keys.insert(written.context + '\n' + written.key).second;
    ReportedItem item = judged(std::move(written), person);
    item.isRepeated = !isNew;
    use(item);
  });
}

}  // namespace vestra::inspect
