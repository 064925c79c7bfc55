#ifndef VESTRA_HANDLER_REPORT_SCRIPT_H
#define VESTRA_HANDLER_REPORT_SCRIPT_H

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include <vestra/vestra.h>
#include <vestra/vestra_data.h>

#include "data/contexts.h"
#include "data/crc32.h"

namespace Oza {

// The lines of a report script, in their order.

/// The first line. Like all paths of a script, the directory stands unquoted.
std::string initLine(const std::string& vestraDirectory);

/// What was collected: its lines of the script, and the checksum.
struct CollectedText {
  std::string lines;
  Crc32 checksum;
};

/// Which contexts a script visits. Two neighbours that are both empty are skipped
/// together, wherever the pair begins, so that a visited context may be empty.
std::array<bool, CONTEXT_COUNT> visitedContexts(const std::array<bool, CONTEXT_COUNT>& isEmpty);

/// Appends the visited contexts. A client is registered only when the first of its two
/// contexts is visited.
///
/// @param contexts  The six, each a `VestraParentData`.
/// @param text      What was appended before stays when a node throws.
void appendContexts(const std::vector<VestraDataInterface*>& contexts, CollectedText& text);

/// The identifier of a report's registration: on an internal site, marked as a test of
/// the product.
std::string registrationText(bool isInternal, Vestra::ProductType product, const std::string& registrationId);

/// The line that has the report transmitted, and the last line.
///
/// @param clientId      The checksum.
/// @param registration  Quoted, and not escaped.
std::string transmitLines(std::uint32_t clientId, const std::string& registration,
                          const std::string& vestraDirectory, Vestra::ProductType product);

}  // namespace Oza

#endif
