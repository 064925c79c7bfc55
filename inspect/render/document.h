#ifndef VESTRA_INSPECT_RENDER_DOCUMENT_H
#define VESTRA_INSPECT_RENDER_DOCUMENT_H

#include <string>

#include <nlohmann/json.hpp>

#include "checks/finding.h"
#include "facts/facts.h"
#include "facts/project_list.h"
#include "rehearse/rehearsed.h"
#include "render/redaction.h"

namespace vestra::inspect {

/// A document of schema vestra-inspect/1, from which the text for people is made too. Its texts may be any
/// bytes until `dumped` writes them.
using Json = nlohmann::ordered_json;

/// @param command  "status" or "doctor"
Json statusDocument(const Facts& facts, const Findings& findings, const std::string& command,
                    const Redaction& redaction);
Json rehearsalDocument(const Rehearsal& rehearsal, const Redaction& redaction);
Json listDocument(const Facts& machine, const ProjectList& list, const Redaction& redaction);
/// A document that says only what went wrong.
Json failureDocument(const std::string& command, const std::string& reason, const Redaction& redaction);

// The document of `report` is written in pieces: a report may have a million items.

/// Without the reports.
Json reportsDocument(const Facts& facts, const Redaction& redaction);
/// Without its items.
Json reportDocument(const ReportFacts& report, const Redaction& redaction);
Json itemDocument(const ReportedItem& item, const Redaction& redaction);

/// The document's text. Bytes are strings where they are UTF-8, else {"hex": "..."}.
/// @param indent  -1 for all in one line
std::string dumped(Json document, int indent = 2);

/// Whether a product's next run reports, when, and why not: "due now", "due at ...", "cannot report: ...",
/// "cannot tell: ...".
std::string verdictOf(const Facts& facts, const Prediction& next);

}  // namespace vestra::inspect

#endif
