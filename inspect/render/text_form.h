#ifndef VESTRA_INSPECT_RENDER_TEXT_FORM_H
#define VESTRA_INSPECT_RENDER_TEXT_FORM_H

#include "render/document.h"
#include "render/page.h"

namespace vestra::inspect {

// The documents for people.

void writeStatus(const Json& document, Page& page);
void writeDoctor(const Json& document, Page& page);
void writeList(const Json& document, Page& page);
void writeRehearsal(const Json& document, Page& page);

/// A report's head and items.
void writeReport(const ReportFacts& report, const PersonFacts& person, const Redaction& redaction,
                 Page& page);

}  // namespace vestra::inspect

#endif
