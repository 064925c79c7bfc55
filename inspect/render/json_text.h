#ifndef VESTRA_INSPECT_RENDER_JSON_TEXT_H
#define VESTRA_INSPECT_RENDER_JSON_TEXT_H

#include <string>

#include "checks/finding.h"
#include "facts/facts.h"
#include "facts/project_list.h"
#include "rehearse/rehearsed.h"
#include "render/redaction.h"

namespace vestra::inspect {

// The texts of documents of schema vestra-inspect/1. Bytes are strings where they are UTF-8, else
// {"hex": "..."}.

/// @param command  "status" or "doctor"
std::string statusDocument(const Facts& facts, const Findings& findings, const std::string& command,
                           const Redaction& redaction);
std::string reportsDocument(const Facts& facts, const std::string& verdict, const Redaction& redaction);
std::string reportDocument(const ReportFacts& report, const Redaction& redaction);
std::string rehearsalDocument(const Rehearsal& rehearsal, const Redaction& redaction);
std::string listDocument(const Facts& machine, const ProjectList& list, const Redaction& redaction);
/// A document that says only what went wrong.
std::string failureDocument(const std::string& command, const std::string& reason,
                            const Redaction& redaction);

}  // namespace vestra::inspect

#endif
