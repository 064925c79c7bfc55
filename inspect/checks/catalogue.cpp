#include "checks/finding.h"

namespace vestra::inspect {

const std::vector<Check>& allChecks() {
  constexpr Level P = Level::problem;
  constexpr Level W = Level::warning;
  constexpr Level N = Level::note;
  static const std::vector<Check> checks = {
      {"project.missing", W, "A host would create the directory; more likely another one is meant."},
      {"project.unwritable", P, "The vestra directory cannot be created: nothing is reported."},
      {"project.vestra_is_file", P, "The vestra directory cannot be created there: nothing is reported."},
      {"project.readonly", P, "Projects on a read-only file system do not report."},
      {"project.full", P, "The next run cannot write its report, nor a new project its identity."},
      {"project.limit", P,
       "Files are cut there, the report too, and a record that would not fit is not written."},
      {"project.shell", P,
       "Nothing is quoted: the shell is given other words, and the tool does not get the report."},
      {"project.shared_writable", W, "Others may exchange the script between writing and running."},
      {"send.none", N, "No run asked for a report here: the host ended before, or named another directory."},

      {"identity.empty", P,
       "Reports of this project carry an empty project_id for good. A run that did not come to its end "
       "left the file."},
      {"identity.cut", P, "The missing fields are lost; without line 5, project_id is empty for good."},
      {"identity.id_empty", P, "Reports of this project carry an empty project_id for good."},
      {"identity.number", P,
       "The next run deletes the file and reports nothing. The one after it creates a new "
       "identifier, counts from 1, and is due."},
      {"identity.overflow", P,
       "The next run writes a number that is too large; the one after it deletes the file and "
       "reports nothing."},
      {"identity.carriage_return", W, "The carriage return of line 5 is a part of the identifier."},
      {"identity.id_nul", W, "The identifier is reported up to the NUL."},
      {"identity.id_script", P, "The main design tool runs these characters as script."},
      {"identity.unreadable", P, "Each run empties the file, reports an empty project_id, and is due."},
      {"identity.unwritable", P, "Nothing is reported."},
      {"identity.special", P, "Nothing is reported."},
      {"identity.read_error", P, "Nothing is reported until the file can be read."},
      {"identity.unknown", W, "Whether a run could use it cannot be told."},
      {"identity.link", N,
       "The link is followed and kept; where it leads nowhere, the file is created there."},
      {"identity.loop", P, "Nothing is reported."},

      {"due.future", P,
       "A clock was ahead when that report was handed over. None is until a day after that time."},
      {"clock.behind", W, "This machine's clock, or the file server's, was set back."},

      {"home.unset", W, "The settings are below /tmp, and all users of the machine share them."},
      {"home.relative", W, "Each directory that a host starts in has an identifier of its own."},
      {"home.volatile", N,
       "The home does not last: a new user after each start of the machine or container."},
      {"settings.unwritable", P, "Reports carry an empty random_id."},
      {"settings.unreadable", P, "Each report carries a new random_id, and the file grows by a line."},
      {"settings.special", P, "Reports carry an empty random_id."},
      {"settings.empty_first", P, "Each report carries a new random_id, and the file grows by a line."},
      {"settings.no_newline", W, "The next identifier is appended to that line and corrupted by it."},
      {"settings.id_nul", W, "The identifier is reported up to the NUL."},
      {"settings.id_script", P, "The main design tool runs these characters as script."},
      {"settings.full", W, "The identifier cannot be kept: the next run creates another."},

      {"support.absent", P,
       "Nothing is reported, and the identity file of a new project stays empty. Who installed the "
       "program can say where the library is."},
      {"support.broken", P, "The library cannot be loaded: nothing is reported."},
      {"support.entry", P, "The host gets an exception, and nothing is reported."},
      {"support.null", P, "The host gets an exception, and nothing is reported."},
      {"support.unknown", W, "Whether the program finds it cannot be told."},
      {"support.writable", W, "Others can have their own code run in the host."},
      {"support.standin", W,
       "This is the test kit's stand-in: reports are written, and nothing is transmitted."},

      {"tool.shell", P, "The main design tool cannot be started; send returns true all the same."},
      {"tool.missing", P, "The main design tool cannot be started; send returns true all the same."},
      {"tool.log", P,
       "The old log cannot be removed: TAVLO's host gets an exception, the attempt is counted."},
      {"tool.script_place", P,
       "The tool gets what lies there instead of the report, or the host gets an exception afterwards."},
      {"tool.failed", W, "The tool was started and failed, or writes its reports elsewhere."},

      {"report.cut", P,
       "The support library gave no registration, the host was killed, or the disk was full."},
      {"report.hazard", P,
       "The tool reads it differently, or refuses the script; the host's author can fix it."},
      {"report.checksum", W, "The script was altered after it was written, or its time was."},
      {"report.personal", W, "The host reports it; whether it may is a question for its author."},
      {"report.empty_ids", P, "The report cannot be told from others without an identifier."},

      {"site.internal", N, "Reports are marked as tests."},
      {"site.override", N, "The machine reports like any other."},
      {"env.debug", N, "Script and rules file stay after a report."},
      {"env.testkit", W, "The stand-ins of the test kit answer as these variables say."},
      {"host.running", N, "Do not edit the files now."},
  };
  return checks;
}

}  // namespace vestra::inspect
