#ifndef VESTRA_INSPECT_COMMAND_LINE_H
#define VESTRA_INSPECT_COMMAND_LINE_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "facts/host_context.h"

namespace vestra::inspect {

/// What the user asks for.
struct Request {
  /// "status", "report", "doctor", "list", "rehearse"
  std::string command = "status";
  /// The project, or for `report` a file; empty for the nearest project.
  std::string subject;
  /// What `list` walks through.
  std::vector<std::string> directories;
  /// The program to rehearse, and its arguments.
  std::vector<std::string> program;
  /// The product that is asked about; empty for those that left traces.
  std::vector<Product> products;
  std::optional<std::string> home;
  std::string environmentFile;
  std::string host;
  /// Whose rights are tested; empty for this process's own.
  std::string user;
  std::optional<std::int64_t> now;
  bool asJson = false;
  bool isRedacted = false;
  /// "problem", "warning", "note", "never"
  std::string failOn = "problem";
  /// "auto", "always", "never"
  std::string colour = "auto";
};

/// The command line, or what to do instead.
struct CommandLine {
  Request request;
  /// The status to leave with at once, after `output` or `complaint` was written.
  std::optional<int> exitStatus;
  std::string output;
  std::string complaint;
};

CommandLine readCommandLine(int count, const char* const* words);

}  // namespace vestra::inspect

#endif
