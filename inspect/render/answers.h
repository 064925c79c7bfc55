#ifndef VESTRA_INSPECT_RENDER_ANSWERS_H
#define VESTRA_INSPECT_RENDER_ANSWERS_H

#include <string>
#include <vector>

#include "checks/finding.h"
#include "facts/facts.h"
#include "render/page.h"

namespace vestra::inspect {

/// Whether, and when, the next run reports: one sentence.
std::string verdictOf(const Facts& facts);

/// What the shell will be given; "TOOL" for the main design tool, which only the support
/// library can name.
std::string commandLineOf(const Facts& facts, Product product);

/// What a file's being there tells, and what it does not.
std::string whatItProves(const Facts& facts, const ReportFile& file);

void writeStatus(const Facts& facts, const Findings& findings, Page& page);

void writeDoctor(const Facts& facts, const Findings& findings, Page& page);

/// The first line of a report's account.
std::string verdictOf(const ReportFacts& report);

void writeReport(const ReportFacts& report, Page& page);

}  // namespace vestra::inspect

#endif
