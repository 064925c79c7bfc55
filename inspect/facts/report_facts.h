#ifndef VESTRA_INSPECT_FACTS_REPORT_FACTS_H
#define VESTRA_INSPECT_FACTS_REPORT_FACTS_H

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "facts/file_snapshot.h"
#include "facts/user_facts.h"
#include "reading/written_items.h"

namespace vestra::inspect {

/// One item of a report, and what there is to say about it.
struct ReportedItem {
  reading::WrittenItem written;
  /// Why the interpreter reads it otherwise; nothing when it does not.
  std::optional<std::string> hazard;
  /// Whether it is an identifier of section 0.
  bool isIdentifier = false;
  /// Whether an item before it in its section has the same key.
  bool isRepeated = false;
  /// What it gives away: "your login name", "your home directory", ...
  std::vector<std::string> personal;
};

/// How many items something is to be said of, and what, of the first of them.
struct ItemCount {
  std::size_t count = 0;
  std::string first;
};

/// A report script, read as far as it goes.
struct ReportFacts {
  /// With its bytes.
  FileSnapshot file;
  /// "KELVO" or "TAVLO"
  std::string product;
  /// The vestra directory that it names; empty when its first line is corrupt.
  std::string directory;
  std::size_t itemCount = 0;
  /// The items of section 0.
  std::map<std::string, std::string> project;
  ItemCount hazards;
  ItemCount personal;
  ItemCount emptyIdentifiers;
  /// Whether the transmit line is there.
  bool isComplete = false;
  std::string checksum;
  std::string registration;
  /// The local hour for which the checksum agrees, as seconds; nothing when it was computed
  /// for no hour around the file's time.
  std::optional<std::int64_t> checksumHour;

  /// An item of section 0; empty without one.
  std::string projectFact(const std::string& key) const;
};

/// Whether a text is, or begins as, a report script.
bool looksLikeScript(const std::string& text);

/// @param file  With its bytes.
ReportFacts readReport(FileSnapshot file, const PersonFacts& person);

/// Reads a report's items anew, one by one: a report may have a million.
void forEachItem(const ReportFacts& report, const PersonFacts& person,
                 const std::function<void(const ReportedItem& item)>& use);

}  // namespace vestra::inspect

#endif
