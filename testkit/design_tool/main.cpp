#include <cstdlib>
#include <exception>
#include <filesystem>
#include <iostream>
#include <string>
#include <system_error>
#include <vector>

#include <fcntl.h>
#include <unistd.h>

#include "design_tool/command_line.h"
#include "design_tool/design_tool.h"
#include "design_tool/limits.h"

namespace {

using namespace vestra::design_tool;

/// A closed standard descriptor would be given to the next file that is opened. Writing to what stands there
/// instead fails.
void occupyStandardDescriptors() {
  int opened = 0;
  do {
    opened = ::open("/dev/null", O_RDONLY);
  } while (opened >= 0 && opened <= 2);
  ::close(opened);
}

std::string privacyPage() {
  std::error_code error;
  const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe", error);
  const std::filesystem::path page = (program.parent_path() / PRIVACY_PAGE_FROM_HERE).lexically_normal();
  return std::filesystem::is_regular_file(page, error) ? page.string() : "";
}

int perform(const Request& request) {
  const char* const outbox = std::getenv("VESTRA_OUTBOX");
  limitResources(request.script);
  switch (request.action) {
    case Action::Run:
      return runDesignTool(request.script, outbox != nullptr ? outbox : "", privacyPage(), std::cout,
                           std::cerr);
    case Action::Show:
      return showReport(request.script, std::cout, std::cerr);
    case Action::PrintRecord:
      return printRecord(request.script, std::cout, std::cerr);
    case Action::Help:
      std::cout << helpText();
      return 0;
    case Action::Version:
      break;
  }
  std::cout << versionText();
  return 0;
}

}  // namespace

int main(int count, char** words) {
  occupyStandardDescriptors();
  try {
    const std::vector<std::string> arguments(words + 1, words + count);
    const int status = perform(readCommandLine(arguments));
    if (std::cout.flush()) {
      return status;
    }
    std::cerr << "vestra-design-tool: standard output cannot be written\n";
  } catch (const UsageError& error) {
    std::cerr << usageText(error);
    return 2;
  } catch (const std::exception& error) {
    std::cerr << "vestra-design-tool: " << error.what() << '\n';
  }
  return 1;
}
