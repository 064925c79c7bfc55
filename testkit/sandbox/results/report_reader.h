#ifndef VESTRA_TESTKIT_SANDBOX_RESULTS_REPORT_READER_H
#define VESTRA_TESTKIT_SANDBOX_RESULTS_REPORT_READER_H

#include <string>
#include <vector>

#include <vestra/testkit/host_run.h>

namespace vestra::testkit {

/// The reports in an outbox of the stand-in design tool, in the order in which they
/// were made; none where the outbox is missing.
std::vector<Report> reportsIn(const std::string& outbox);

}  // namespace vestra::testkit

#endif
