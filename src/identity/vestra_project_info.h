#ifndef VESTRA_IDENTITY_VESTRA_PROJECT_INFO_H
#define VESTRA_IDENTITY_VESTRA_PROJECT_INFO_H

#include <array>
#include <cstdint>
#include <fstream>
#include <istream>
#include <string>

namespace Oza {

class VestraHandler;

/// What a project identity file holds, with the values of a new project.
struct ProjectIdentity {
  /// When a report was last sent for every product but KELVO_ALT, in seconds since
  /// the epoch; 0 for never.
  std::int64_t lastSendTimeDefault = 0;
  /// The same for KELVO_ALT.
  std::int64_t lastSendTimeType1 = 0;
  /// Number of the send attempt that comes next.
  std::uint64_t iteration = 1;
  /// 1 when the host supplied the project identifier at the time the file was made.
  std::int32_t orbeloFlow = 0;
  std::string projectId;
};

/// Reads the five lines of an identity file: four numbers, then the identifier. A
/// number's line that is empty or missing, and an identifier's line that is
/// missing, leave their fields as they are; text behind a number is ignored.
///
/// @throws std::invalid_argument when one of the first four lines is no number.
/// @throws std::out_of_range when its number does not fit.
void readProjectIdentity(std::istream& in, ProjectIdentity& identity);

/// The five lines, without their line ends.
std::array<std::string, 5> formatProjectIdentity(const ProjectIdentity& identity);

/// Whether more than 86400 seconds, one day, lie between two times given in
/// seconds since the epoch.
bool isReportDue(std::int64_t now, std::int64_t lastSendTime);

/// The identity record of one project: its identifier, how many reports were
/// attempted and when the last ones were sent. Kept in the project's
/// vestra/.kelvo_vestrra.info.
class VestraProjectInfo {
 public:
  /// @param path     Path of the identity file; its last 19 bytes are the name.
  /// @param handler  Asked for the host's project identifier and for the
  ///                 product. Must outlive the record.
  VestraProjectInfo(std::string path, VestraHandler* handler);

  /// Loads the identity file or, where there is none, makes an empty one with its
  /// directories and a new identifier in memory. An identifier that the host added
  /// as an item "project_id" wins over a new and over a stored one.
  ///
  /// @return Whether the record can be used. False when the file can be neither
  ///         opened nor made or a file-system call fails, and when its numbers are
  ///         unreadable: it is deleted then, so that the project is new at the
  ///         next run.
  bool loadOrCreate();

  /// Counts an attempt to send, notes the time when it is due, and rewrites the
  /// identity file. A failure to write is not noticed.
  ///
  /// @return Whether more than 86400 seconds have passed since the last report for
  ///         this product's slot.
  bool recordSendAttempt();

  const std::string& getProjectId() const;
  std::uint64_t getIteration() const;
  /// Non-zero when the host supplied the project identifier of a new project.
  std::int32_t getOrbeloFlow() const;

 private:
  void startNewProject();
  bool load(std::fstream& file);
  bool makeEmptyFile() const;
  void writeFile() const;
  std::int64_t& lastSendTime();

  ProjectIdentity identity;
  std::string filePath;
  VestraHandler* owner;
};

}  // namespace Oza

#endif
