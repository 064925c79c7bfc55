#include <fmt/format.h>

#include "facts/looked_file.h"
#include "facts/support_facts.h"
#include "rehearse/rehearsal.h"

namespace vestra::inspect {
namespace {

constexpr int INTERPRETERS_AT_MOST = 4;

/// The program that a script's first line names; empty for what is no script.
std::string interpreterOf(const std::string& program) {
  const std::string text = readFileAt(program).text.value_or("").substr(0, 256);
  if (text.rfind("#!", 0) != 0) {
    return "";
  }
  const std::size_t begin = text.find_first_not_of(" \t", 2);
  return begin == std::string::npos ? "" : text.substr(begin, text.find_first_of(" \t\r\n", begin) - begin);
}

std::string whyNotHeldBack(const std::string& program, int depth) {
  if (isPrivileged(program)) {
    return program + " is set-user-ID, set-group-ID or has capabilities: the loader ignores the shim";
  }
  const std::string interpreter = interpreterOf(program);
  if (!interpreter.empty()) {
    return depth == 0 ? "too many interpreters" : whyNotHeldBack(interpreter, depth - 1);
  }
  const ElfFile elf = readElfFile(program);
  if (elf.state != ElfState::loadable) {
    return fmt::format("{} is no program for this machine ({})", program, elf.reason);
  }
  return elf.hasInterpreter ? "" : program + " is static: the loader has no part in it";
}

}  // namespace

std::string whyNotHeldBack(const std::string& program) {
  return whyNotHeldBack(program, INTERPRETERS_AT_MOST);
}

}  // namespace vestra::inspect
