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
#include "render/text_form.h"

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

/// A document, or the text that is made of it.
class Output {
 public:
  Output(const Request& theRequest, bool hasColours, std::ostream& output)
      : request(theRequest), page(output, hasColours), out(output) {}

  void write(const Json& document, void (*writeText)(const Json&, Page&)) {
    if (request.asJson) {
      out << dumped(document) << '\n';
    } else {
      writeText(document, page);
    }
  }

  void writeReports(const Facts& facts, const Redaction& redaction) {
    const Json head = reportsDocument(facts, redaction);
    if (request.asJson) {
      writeReportsDocument(head, facts, redaction);
    } else {
      page.heading(head["verdict"]["text"]);
      for (const ReportFacts& report : facts.reports) {
        writeReport(report, facts.person, redaction, page);
      }
    }
  }

 private:
  /// The text of an object that goes on.
  static std::string beginningOf(const Json& object) {
    const std::string text = dumped(object);
    return text.substr(0, text.rfind('\n')) + ",\n";
  }

  void writeReportsDocument(const Json& head, const Facts& facts, const Redaction& redaction) {
    const char* between = "";
    out << beginningOf(head) << "  \"reports\": [";
    for (const ReportFacts& report : facts.reports) {
      out << between << beginningOf(reportDocument(report, redaction)) << "  \"items\": [";
      between = "";
      forEachItem(report, facts.person, [&](const ReportedItem& item) {
        out << between << dumped(itemDocument(item, redaction), -1);
        between = ",\n";
      });
      out << "]}";
      between = ",\n";
    }
    out << "]\n}\n";
  }

  const Request& request;
  Page page;
  std::ostream& out;
};

Redaction redactionFor(const Request& request, const Facts& facts) {
  return request.isRedacted ? Redaction(facts) : Redaction();
}

/// All the facts, by status or by doctor.
int showProject(const Request& request, const HostContext& context, Output& output,
                std::ostream& complaints) {
  Facts facts = lookAtMachine(context);
  facts.isRedacted = request.isRedacted;
  lookInto(projectOf(request, context), request.products, facts);
  readReports(facts);
  Findings findings = findingsIn(facts);
  const bool isDoctor = request.command == "doctor";
  if (isDoctor) {
    checkRunningHosts(findings);
  }
  const Redaction redaction = redactionFor(request, facts);
  const std::string hidden = whatIsHidden(facts);
  if (!hidden.empty()) {
    complaints << "vestra-inspect: " << redaction(hidden) << '\n';
  }
  output.write(statusDocument(facts, findings, request.command, redaction),
               isDoctor ? writeDoctor : writeStatus);
  return statusFor(request, facts, findings);
}

/// The script of a product in a folder of its own, as a rehearsal keeps it.
void readReportsIn(const std::string& folder, Facts& facts) {
  for (const Product product : {Oza::Vestra::KELVO, Oza::Vestra::TAVLO}) {
    FileSnapshot file = readFileAt(folder + "/" + Oza::profileOf(product).script);
    if (file.text) {
      facts.reports.push_back(readReport(std::move(file), facts.person));
    }
  }
}

/// A script, the scripts of a project, or a folder with one in it.
int showReports(const Request& request, const HostContext& context, Output& output) {
  Facts facts = lookAtMachine(context);
  FileSnapshot subject = readFileAt(request.subject);
  if (!request.subject.empty() && !subject.exists()) {
    throw std::runtime_error(request.subject + ": there is no such file or directory");
  }
  lookInto(subject.isRegular() ? context.currentDirectory : projectOf(request, context), request.products,
           facts);
  if (subject.isRegular()) {
    if (!subject.text || !looksLikeScript(*subject.text)) {
      throw std::runtime_error(request.subject + " is no report script");
    }
    facts.reports.push_back(readReport(std::move(subject), facts.person));
  } else {
    readReports(facts);
  }
  if (facts.reports.empty() && !request.subject.empty()) {
    readReportsIn(request.subject, facts);
  }
  output.writeReports(facts, redactionFor(request, facts));
  return 0;
}

/// A line on the terminal that is overwritten by the next one.
void sayProgress(std::size_t directories, std::size_t projects) {
  const std::string line = fmt::format("\r{} directories, {} projects ", directories, projects);
  static_cast<void>(!write(STDERR_FILENO, line.data(), line.size()));
}

int showList(const Request& request, const HostContext& context, Output& output, std::ostream& complaints) {
  const Facts machine = lookAtMachine(context);
  const bool saysProgress = isatty(STDERR_FILENO) == 1;
  const ProjectList list = listProjects(machine, request.directories,
                                        saysProgress ? Progress(sayProgress) : Progress([](auto, auto) {}));
  complaints << (saysProgress ? "\r\033[K" : "");
  output.write(listDocument(machine, list, redactionFor(request, machine)), writeList);
  return 0;
}

/// Tells a person on the standard error, which the program shares with nobody then.
int showRehearsal(const Request& request, const HostContext& context, std::ostream& out,
                  std::ostream& complaints) {
  const Rehearsal rehearsal = rehearse(request, context);
  Output(request, false, request.asJson ? out : complaints)
      .write(rehearsalDocument(rehearsal, redactionFor(request, rehearsal.facts)), writeRehearsal);
  return rehearsal.status;
}

int dispatch(const Request& request, bool onTerminal, std::ostream& out, std::ostream& complaints) {
  const HostContext context = contextOf(request);
  Output output(request, wantsColours(request, context, onTerminal), out);
  return request.command == "rehearse" ? showRehearsal(request, context, out, complaints)
         : request.command == "list"   ? showList(request, context, output, complaints)
         : request.command == "report" ? showReports(request, context, output)
                                       : showProject(request, context, output, complaints);
}

/// What went wrong may name the user too.
int fail(const Request& request, int status, const std::string& reason, std::ostream& out,
         std::ostream& complaints) {
  HostContext context;
  context.environment = ownEnvironment();
  const Redaction redaction = request.isRedacted ? Redaction(lookAtPerson(context)) : Redaction();
  complaints << "vestra-inspect: " << reading::forTerminal(redaction(reason)) << '\n';
  if (request.asJson) {
    out << dumped(failureDocument(request.command, reason, redaction)) << '\n';
  }
  return status;
}

}  // namespace

int answer(const Request& request, bool onTerminal, std::ostream& out, std::ostream& complaints) {
  try {
    return dispatch(request, onTerminal, out, complaints);
  } catch (const NotRehearsed& error) {
    return fail(request, error.status, error.what(), out, complaints);
  } catch (const std::exception& error) {
    return fail(request, request.command == "rehearse" ? CANNOT_BE_REHEARSED : COULD_NOT_LOOK, error.what(),
                out, complaints);
  }
}

}  // namespace vestra::inspect
