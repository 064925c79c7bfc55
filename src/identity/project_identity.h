#ifndef VESTRA_IDENTITY_PROJECT_IDENTITY_H
#define VESTRA_IDENTITY_PROJECT_IDENTITY_H

#include <cstdint>
#include <string>

#include <vestra/vestra.h>

namespace Oza {

/// The name of the identity file in a project's vestra directory. Its doubled letter
/// is the name on disk.
inline constexpr char PROJECT_IDENTITY_FILE[] = ".kelvo_vestrra.info";

/// More than this must pass after a report before the next one is due.
inline constexpr std::int64_t SECONDS_PER_DAY = 86400;

/// What a project identity file holds, with the values of a new project.
struct ProjectIdentity {
  /// When a report was last sent for every product but KELVO_ALT, in seconds since
  /// the epoch; 0 for never.
  std::int64_t lastSendTimeDefault = 0;
  /// The same for KELVO_ALT.
  std::int64_t lastSendTimeType1 = 0;
  /// Number of the next send attempt.
  std::uint64_t iteration = 1;
  /// 1 when the host supplied the project identifier when the file was created.
  std::int32_t orbeloFlow = 0;
  std::string projectId;
};

/// Reads the five lines of an identity file: four numbers, then the identifier. A
/// number's line that is empty or missing, and an identifier's line that is
/// missing, leave their fields as they are; text after a number is ignored.
///
/// @throws std::invalid_argument when one of the first four lines is no number.
/// @throws std::out_of_range when its number does not fit.
void readProjectIdentity(const std::string& text, ProjectIdentity& identity);

/// The same as one step: the identity is read whole or stays as it was.
/// @return False when one of the first four lines is no number that fits.
bool parseProjectIdentity(const std::string& text, ProjectIdentity& identity);

/// The identity with the times, the iteration and the flow of its file's current text, and
/// with that text's identifier unless the host supplied its own. A corrupt text and missing
/// lines change nothing.
ProjectIdentity mergedWithStored(const ProjectIdentity& identity, const std::string& text,
                                 bool identifierIsHosts);

/// The text of an identity file: five lines.
std::string formatProjectIdentity(const ProjectIdentity& identity);

/// When a report was last sent for a product: KELVO_ALT has a time of its own, all
/// others share one.
std::int64_t lastSendTime(const ProjectIdentity& identity, Vestra::ProductType product);

/// Whether more than 86400 seconds, one day, lie between the last report for this
/// product and `now`, in seconds since the epoch. The first report is always due, even when
/// the clock is near the epoch.
bool isReportDue(const ProjectIdentity& identity, Vestra::ProductType product, std::int64_t now);

/// Counts an attempt to send at `now` and, when a report is due, stores that time for
/// the product.
///
/// @return Whether it was due.
bool countAttempt(ProjectIdentity& identity, Vestra::ProductType product, std::int64_t now);

}  // namespace Oza

#endif
