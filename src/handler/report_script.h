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

/// The first line. The directory is unquoted, as all paths of a script.
std::string initLine(const std::string& vestraDirectory);

/// What was collected: its lines of the script, and the checksum.
struct CollectedText {
  std::string lines;
  Crc32 checksum;
};

/// Which contexts a script visits. Two adjacent empty contexts are skipped together, at even
/// and at odd positions; a single empty context is visited.
std::array<bool, CONTEXT_COUNT> visitedContexts(const std::array<bool, CONTEXT_COUNT>& isEmpty);

/// Appends the visited contexts. A client is registered only when the first of its two
/// contexts is visited.
///
/// @param contexts  The six, each a `VestraParentData`.
/// @param text      Keeps what has been appended when a node throws.
void appendContexts(const std::vector<VestraDataInterface*>& contexts, CollectedText& text);

/// The identifier of a report's registration: on an internal site, marked as a test of
/// the product.
std::string registrationText(bool isInternal, Vestra::ProductType product, const std::string& registrationId);

/// The vestra_transmit and the vestra_terminate line.
///
/// @param clientId      The checksum.
/// @param registration  Written in quotes, without escaping.
std::string transmitLines(std::uint32_t clientId, const std::string& registration,
                          const std::string& vestraDirectory, Vestra::ProductType product);

}  // namespace Oza

#endif
