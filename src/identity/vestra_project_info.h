#ifndef VESTRA_IDENTITY_VESTRA_PROJECT_INFO_H
#define VESTRA_IDENTITY_VESTRA_PROJECT_INFO_H

#include <cstdint>
#include <optional>
#include <string>

#include "files/descriptor.h"
#include "files/time_budget.h"
#include "identity/project_identity.h"

namespace Oza {

class VestraHandler;

/// The identity record of one project: its identifier, how many reports were
/// attempted and when the last ones were sent. Kept in the project's
/// vestra/.kelvo_vestrra.info.
/// The concurrency design: docs/architecture.md, "Many hosts in one project".
class VestraProjectInfo {
 public:
  /// @param path     Path of the identity file. Its directory is the path without the last
  ///                 19 bytes.
  /// @param handler  Source of the host's project identifier and of the product. Must
  ///                 outlive the record.
  VestraProjectInfo(std::string path, VestraHandler* handler);

  /// Loads the identity file or, if there is none, creates an empty one with its
  /// directories and a new identifier in memory. An identifier that the host added
  /// as an item "project_id" replaces a new and a stored one. If another host is
  /// initialising the project, waits for its identifier.
  ///
  /// A file that may be written and not read (EACCES) is emptied and starts a record
  /// without an identifier. No other failure to open or read it changes the file.
  ///
  /// @return Whether the record can be used. False when the file can be neither
  ///         opened nor created or a file-system call fails, and when its numbers are
  ///         corrupt: it is deleted then, and the next run starts a new project.
  bool loadOrCreate();

  /// Counts an attempt to send, stores the time when it is due, and overwrites the
  /// identity file: reads it again, decides and writes under a lock, if the file
  /// system has one and no other process holds it for too long. A failure to write is
  /// not reported. A file that cannot be read again is not written, unless it is empty.
  ///
  /// @return Whether more than 86400 seconds have passed since the last report for
  ///         this product's slot.
  bool recordSendAttempt();

  const std::string& getProjectId() const { return identity.projectId; }
  std::uint64_t getIteration() const { return identity.iteration; }
  /// Non-zero when the host supplied the project identifier of a new project.
  std::int32_t getOrbeloFlow() const { return identity.orbeloFlow; }

 private:
  void startNewProject();
  bool takeHostsIdentifier();
  bool loadOthers();
  bool load(const Descriptor& file);
  bool emptyUnreadableFile() const;
  bool countIn(const Descriptor& file);

  ProjectIdentity identity;
  bool identifierIsHosts = false;
  std::string filePath;
  VestraHandler* owner;
  TimeBudget timeBudget;
};

}  // namespace Oza

#endif
