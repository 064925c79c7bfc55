#ifndef VESTRA_INSPECT_FACTS_REPORT_FACTS_H
#define VESTRA_INSPECT_FACTS_REPORT_FACTS_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "facts/file_snapshot.h"
#include "facts/host_context.h"
#include "facts/user_facts.h"
#include "reading/written_items.h"

namespace vestra::inspect {

/// One item of a report, and what there is to say about it.
struct ReportedItem {
  reading::WrittenItem written;
  /// Why the interpreter reads it otherwise; nothing when it does not.
  std::optional<std::string> hazard;
  /// "project_id", "random_id" or "registration_id" of section 0.
  bool isIdentifier = false;
  /// Whether an item before it in its section has the same key.
  bool isRepeated = false;
  /// What it gives away: "your login name", "your home directory", ...
  std::vector<std::string> personal;
};

/// A report script, read as far as it goes.
struct ReportFacts {
  FileSnapshot file;
  /// "KELVO" or "TAVLO"
  std::string product;
  /// The vestra directory that it names; empty when its first line is damaged.
  std::string directory;
  std::vector<ReportedItem> items;
  /// Clients whose items stand without a registration.
  std::vector<std::string> lostClients;
  /// Whether the transmit line is there.
  bool isComplete = false;
  std::string checksum;
  std::string registration;
  /// The local hour for which the checksum agrees, as seconds; nothing when it was computed
  /// for no hour around the file's time.
  std::optional<std::int64_t> checksumHour;

  /// The value of a key of section 0; empty without one.
  std::string projectFact(const std::string& key) const;
  std::size_t hazardCount() const;
};

/// Whether a text is, or begins as, a report script.
bool looksLikeScript(const std::string& text);

/// @param file  With its bytes.
ReportFacts readReport(FileSnapshot file, const PersonFacts& person);

}  // namespace vestra::inspect

#endif
