#ifndef VESTRA_INSPECT_RENDER_JSON_TEXT_H
#define VESTRA_INSPECT_RENDER_JSON_TEXT_H

#include <string>

#include <nlohmann/json.hpp>

#include "checks/finding.h"
#include "facts/facts.h"
#include "rehearse/rehearsed.h"
#include "render/redaction.h"

namespace vestra::inspect {

using Json = nlohmann::ordered_json;

// Documents of schema vestra-inspect/1. Byte texts are strings where they are UTF-8, else {"hex": "..."}.

/// @param command  "status" or "doctor"
Json statusDocument(const Facts& facts, const Findings& findings, const std::string& command,
                    const Redaction& redaction);
Json reportsDocument(const Facts& facts, const std::string& verdict, const Redaction& redaction);
Json reportDocument(const ReportFacts& report, const Redaction& redaction);
Json rehearsalDocument(const Rehearsal& rehearsal, const Redaction& redaction);
/// A document that says only what went wrong.
Json failureDocument(const std::string& command, const std::string& reason, const Redaction& redaction);

}  // namespace vestra::inspect

#endif
