#include "inspector.h"

#include <cerrno>
#include <ctime>
#include <stdexcept>

#include <fmt/format.h>
#include <boost/filesystem/operations.hpp>

#include "checks/checks.h"
#include "facts/facts.h"
#include "handler/product_profile.h"
#include "reading/visible_text.h"
#include "rehearse/rehearsal.h"
#include "render/answers.h"
#include "render/json_text.h"

namespace vestra::inspect {
namespace {

constexpr int FOUND_SOMETHING = 1;
constexpr int COULD_NOT_LOOK = 3;

std::string readWhole(const std::string& path) {
  const LookedFile file = readFileAt(path);
  if (!file.text) {
    throw std::runtime_error(fmt::format(
        "{}: {}", path, file.kind == FileKind::missing ? "there is no such file" : "cannot be read"));
  }
  return *file.text;
}

View viewOf(const Request& request) {
  View view;
  view.environment =
      request.environmentFile.empty() ? ownEnvironment() : environmentIn(readWhole(request.environmentFile));
  if (request.home) {
    view.environment["HOME"] = *request.home;
  }
  view.currentDirectory = boost::filesystem::current_path().string();
  view.now = request.now.value_or(std::time(nullptr));
  view.host = request.host;
  if (!view.host.empty()) {
    static_cast<void>(readWhole(view.host));
  }
  return view;
}

bool wantsColours(const Request& request, const View& view, bool onTerminal) {
  const bool allowed = onTerminal && !view.isSwitchedOn("NO_COLOR") && view.variable("TERM") != "dumb";
  return request.colour == "always" || (request.colour == "auto" && allowed);
}

bool isFile(const std::string& path) { return lookAt(path).isRegular(); }

std::string projectOf(const Request& request, const View& view) {
  return request.subject.empty() ? nearestProject(view.currentDirectory) : request.subject;
}

/// What these eyes may neither read nor write is for others to look at: what was found then
/// is not certain.
bool isHidden(const LookedFile& file) {
  const bool isClosed = file.isRegular() && !file.text && !file.readFailed && !file.writable;
  return isClosed || (file.kind == FileKind::unknown && file.error != ELOOP);
}

std::string whatIsHidden(const Facts& facts) {
  for (const LookedFile* file : {&facts.project.identityFile, &facts.user.file}) {
    if (isHidden(*file)) {
      return file->path + " may not be read";
    }
  }
  return "";
}

bool isFailure(const std::string& failOn, const Findings& findings) {
  return (failOn == "problem" && findings.count(Level::problem) > 0) ||
         (failOn == "warning" && findings.count(Level::problem) + findings.count(Level::warning) > 0) ||
         (failOn == "note" && !findings.sorted().empty());
}

int statusFor(const Request& request, const Facts& facts, const Findings& findings) {
  if (!whatIsHidden(facts).empty()) {
    return COULD_NOT_LOOK;
  }
  return request.command == "doctor" && isFailure(request.failOn, findings) ? FOUND_SOMETHING : 0;
}

/// One account of all the facts, by status or by doctor.
Answer accountOf(const Request& request, const View& view, bool onTerminal) {
  const Facts facts = lookAtAll(view, projectOf(request, view), request.products);
  Findings findings = findingsIn(facts);
  const bool isDoctor = request.command == "doctor";
  if (isDoctor) {
    checkRunningHosts(findings);
  }
  const Redaction redaction = request.isRedacted ? Redaction(facts) : Redaction();
  const std::string hidden = whatIsHidden(facts);
  Answer result{statusFor(request, facts, findings), "",
                hidden.empty() ? "" : "vestra-inspect: " + redaction(hidden) + "\n"};
  if (request.asJson) {
    result.output = statusDocument(facts, findings, request.command, redaction);
    return result;
  }
  Page page(wantsColours(request, view, onTerminal), redaction);
  (isDoctor ? writeDoctor : writeStatus)(facts, findings, page);
  result.output = page.text();
  return result;
}

/// A script, a folder with one in it, or the scripts of a project.
std::vector<ReportFacts> reportsWantedBy(const Request& request, const Facts& facts) {
  std::vector<ReportFacts> reports;
  const auto add = [&](const std::string& path) {
    LookedFile file = readFileAt(path);
    if (file.text) {
      reports.push_back(readReport(std::move(file), facts.person));
    }
  };
  if (isFile(request.subject)) {
    if (!looksLikeScript(readWhole(request.subject))) {
      throw std::runtime_error(request.subject + " is no report script");
    }
    add(request.subject);
  } else if (facts.reports.empty() && !request.subject.empty()) {
    add(request.subject + "/" + Oza::profileOf(Oza::Vestra::KELVO).script);
    add(request.subject + "/" + Oza::profileOf(Oza::Vestra::TAVLO).script);
  } else {
    reports = facts.reports;
  }
  return reports;
}

Answer reportsFor(const Request& request, const View& view, bool onTerminal) {
  const std::string project = isFile(request.subject) ? view.currentDirectory : projectOf(request, view);
  Facts facts = lookAtAll(view, project, request.products);
  facts.reports = reportsWantedBy(request, facts);
  const std::string none = project +
                           ": no report lies here. One stays after a run that was not due, or while "
                           "CALVIX_VESTRA_DEBUG_EXT is set";
  const std::string verdict = facts.reports.empty() ? none : verdictOf(facts.reports.front());
  const Redaction redaction = request.isRedacted ? Redaction(facts) : Redaction();
  if (request.asJson) {
    return {0, reportsDocument(facts, verdict, redaction), ""};
  }
  Page page(wantsColours(request, view, onTerminal), redaction);
  for (const ReportFacts& report : facts.reports) {
    writeReport(report, page);
  }
  if (facts.reports.empty()) {
    page.verdict(verdict);
  }
  return {0, page.text(), ""};
}

Answer dispatch(const Request& request, bool onTerminal) {
  const View view = viewOf(request);
  if (request.command == "rehearse") {
    return rehearse(request, view);
  }
  return request.command == "report" ? reportsFor(request, view, onTerminal)
                                     : accountOf(request, view, onTerminal);
}

/// What went wrong may name the user too.
Answer failureOf(const Request& request, int status, const std::string& reason) {
  View view;
  view.environment = ownEnvironment();
  const Redaction redaction = request.isRedacted ? Redaction(lookAtPerson(view)) : Redaction();
  return {status, request.asJson ? failureDocument(request.command, reason, redaction) : "",
          fmt::format("vestra-inspect: {}\n", reading::forTerminal(redaction(reason)))};
}

}  // namespace

Answer answer(const Request& request, bool onTerminal) {
  try {
    return dispatch(request, onTerminal);
  } catch (const NotRehearsed& error) {
    return failureOf(request, error.status, error.what());
  } catch (const std::exception& error) {
    return failureOf(request, request.command == "rehearse" ? CANNOT_BE_REHEARSED : COULD_NOT_LOOK,
                     error.what());
  }
}

}  // namespace vestra::inspect
