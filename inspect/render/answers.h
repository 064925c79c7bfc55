#ifndef VESTRA_INSPECT_RENDER_ANSWERS_H
#define VESTRA_INSPECT_RENDER_ANSWERS_H

#include <string>
#include <vector>

#include "checks/finding.h"
#include "facts/facts.h"
#include "facts/project_list.h"
#include "render/page.h"

namespace vestra::inspect {

/// Whether a product's next run reports, when, and why not: "due now", "due at ...", "cannot report: ...",
/// "cannot tell: ...".
std::string verdictOf(const Facts& facts, const Prediction& next);
/// All of them, in one line.
std::string verdictOf(const Facts& facts);
/// The project, and a line for each product.
void writeVerdicts(const Facts& facts, Page& page);

/// Whose permissions the kernel was asked about.
std::string whoseRights(const Facts& facts);

/// What the shell will be given; "TOOL" for the main design tool, which only the support
/// library can name.
std::string commandLineOf(const Facts& facts, Product product);

/// What a file's being there tells, and what it does not.
std::string whatItProves(const Facts& facts, const ReportFile& file);

void writeStatus(const Facts& facts, const Findings& findings, Page& page);

void writeDoctor(const Facts& facts, const Findings& findings, Page& page);

std::string verdictOf(const ProjectList& list);
void writeList(const ProjectList& list, Page& page);

/// The first line of a report's account.
std::string verdictOf(const ReportFacts& report);

void writeReport(const ReportFacts& report, Page& page);

}  // namespace vestra::inspect

#endif
