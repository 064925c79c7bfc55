#include "inspector.h"

#include <grp.h>
#include <pwd.h>
#include <unistd.h>

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
  const FileSnapshot file = readFileAt(path);
  if (!file.text) {
    throw std::runtime_error(fmt::format(
        "{}: {}", path, file.kind == FileKind::missing ? "there is no such file" : "cannot be read"));
  }
  return *file.text;
}

/// Takes on a user's rights, so that the kernel is asked about them. @return The user's home.
std::string becomeUser(const std::string& name) {
  if (geteuid() != 0) {
    throw std::runtime_error("--as requires root");
  }
  const bool isNumber = isPlainNumber(name);
  const passwd* user = isNumber ? getpwuid(static_cast<uid_t>(std::stoul(name))) : getpwnam(name.c_str());
  if (user == nullptr) {
    throw std::runtime_error("there is no user " + name);
  }
  if (initgroups(user->pw_name, user->pw_gid) != 0 ||
      setresgid(user->pw_gid, user->pw_gid, user->pw_gid) != 0 ||
      setresuid(user->pw_uid, user->pw_uid, user->pw_uid) != 0) {
    throw std::runtime_error("the rights of " + name + " cannot be had");
  }
  return user->pw_dir;
}

HostContext contextOf(const Request& request) {
  HostContext context;
  context.environment =
      request.environmentFile.empty() ? ownEnvironment() : environmentIn(readWhole(request.environmentFile));
  if (!request.user.empty()) {
    const std::string home = becomeUser(request.user);
    if (request.environmentFile.empty()) {
      context.environment["HOME"] = home;
    }
  }
  if (request.home) {
    context.environment["HOME"] = *request.home;
  }
  context.currentDirectory = boost::filesystem::current_path().string();
  context.now = request.now.value_or(std::time(nullptr));
  context.host = request.host.empty() ? "" : boost::filesystem::absolute(request.host).string();
  if (!context.host.empty() && !lookAt(context.host).exists()) {
    throw std::runtime_error(context.host + ": there is no such file");
  }
  return context;
}

bool wantsColours(const Request& request, const HostContext& context, bool onTerminal) {
  const bool allowed = onTerminal && !context.isSwitchedOn("NO_COLOR") && context.variable("TERM") != "dumb";
  return request.colour == "always" || (request.colour == "auto" && allowed);
}

bool isFile(const std::string& path) { return lookAt(path).isRegular(); }

std::string projectOf(const Request& request, const HostContext& context) {
  return request.subject.empty() ? nearestProject(context.currentDirectory) : request.subject;
}

/// Findings are uncertain when this user can neither read nor write the file: its owner's host may.
bool isHidden(const FileSnapshot& file) {
  const bool isClosed = file.isUnreadable() && !file.writable;
  return isClosed || (file.kind == FileKind::unknown && file.error != ELOOP);
}

std::string whatIsHidden(const Facts& facts) {
  for (const FileSnapshot* file : {&facts.project.identityFile, &facts.user.file}) {
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
Answer accountOf(const Request& request, const HostContext& context, bool onTerminal) {
  Facts facts = lookAtAll(context, projectOf(request, context), request.products);
  facts.isRedacted = request.isRedacted;
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
  Page page(wantsColours(request, context, onTerminal), redaction);
  (isDoctor ? writeDoctor : writeStatus)(facts, findings, page);
  result.output = page.text();
  return result;
}

/// A script, a folder with one in it, or the scripts of a project.
std::vector<ReportFacts> reportsWantedBy(const Request& request, const Facts& facts) {
  std::vector<ReportFacts> reports;
  const auto add = [&](const std::string& path) {
    FileSnapshot file = readFileAt(path);
    if (file.text) {
      reports.push_back(readReport(std::move(file), facts.person));
    }
  };
  if (!request.subject.empty() && !lookAt(request.subject).exists()) {
    throw std::runtime_error(request.subject + ": there is no such file or directory");
  }
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

Answer reportsFor(const Request& request, const HostContext& context, bool onTerminal) {
  const std::string project =
      isFile(request.subject) ? context.currentDirectory : projectOf(request, context);
  Facts facts = lookAtAll(context, project, request.products);
  facts.isRedacted = request.isRedacted;
  facts.reports = reportsWantedBy(request, facts);
  const std::string none = project +
                           ": no report lies here. One stays after a run that was not due, or while "
                           "CALVIX_VESTRA_DEBUG_EXT is set";
  const std::string verdict = facts.reports.empty() ? none : verdictOf(facts.reports.front());
  const Redaction redaction = request.isRedacted ? Redaction(facts) : Redaction();
  if (request.asJson) {
    return {0, reportsDocument(facts, verdict, redaction), ""};
  }
  Page page(wantsColours(request, context, onTerminal), redaction);
  for (const ReportFacts& report : facts.reports) {
    writeReport(report, page);
  }
  if (facts.reports.empty()) {
    page.verdict(verdict);
  }
  return {0, page.text(), ""};
}

/// A line on the terminal that is overwritten by the next one.
void sayProgress(std::size_t directories, std::size_t projects) {
  const std::string line = fmt::format("\r{} directories, {} projects ", directories, projects);
  static_cast<void>(!write(STDERR_FILENO, line.data(), line.size()));
}

Answer listFor(const Request& request, const HostContext& context, bool onTerminal) {
  const Facts machine = lookAtMachine(context);
  const bool saysProgress = isatty(STDERR_FILENO) == 1;
  const ProjectList list = listProjects(machine, request.directories,
                                        saysProgress ? Progress(sayProgress) : Progress([](auto, auto) {}));
  const Redaction redaction = request.isRedacted ? Redaction(machine) : Redaction();
  const std::string ending = saysProgress ? "\r\033[K" : "";
  if (request.asJson) {
    return {0, listDocument(machine, list, redaction), ending};
  }
  Page page(wantsColours(request, context, onTerminal), redaction);
  writeList(list, page);
  return {0, page.text(), ending};
}

Answer dispatch(const Request& request, bool onTerminal) {
  const HostContext context = contextOf(request);
  if (request.command == "rehearse") {
    return rehearse(request, context);
  }
  if (request.command == "list") {
    return listFor(request, context, onTerminal);
  }
  return request.command == "report" ? reportsFor(request, context, onTerminal)
                                     : accountOf(request, context, onTerminal);
}

/// What went wrong may name the user too.
Answer failureOf(const Request& request, int status, const std::string& reason) {
  HostContext context;
  context.environment = ownEnvironment();
  const Redaction redaction = request.isRedacted ? Redaction(lookAtPerson(context)) : Redaction();
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
