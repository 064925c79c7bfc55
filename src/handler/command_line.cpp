#include "handler/command_line.h"

namespace Oza {

std::string commandLine(const std::string& tool, const std::string& script, const std::string& redirection) {
  return tool + " -mode batch -source " + script + " -notrace " + redirection;
}

std::string redirectionTo(const std::string& log) { return " > " + log + " 2>&1"; }

}  // namespace Oza
