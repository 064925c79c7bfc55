#include <cstdlib>
#include <exception>
#include <filesystem>
#include <iostream>
#include <string>
#include <system_error>
#include <vector>

#include "design_tool/command_line.h"
#include "design_tool/design_tool.h"
#include "design_tool/guard.h"

namespace {

using namespace vestra::design_tool;

/// A reader behind a full disk or a closed pipe gets no status that says all is well.
int checked(int status) {
  if (std::cout.flush()) {
    return status;
  }
  std::cerr << "vestra-design-tool: standard output cannot be written\n";
  return 1;
}

std::string privacyPage() {
  std::error_code error;
  const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe", error);
  const std::filesystem::path page = (program.parent_path() / PRIVACY_PAGE_FROM_HERE).lexically_normal();
  return std::filesystem::is_regular_file(page, error) ? page.string() : "";
}

struct Perform {
  int operator()(const HelpRequest&) const {
    std::cout << helpText();
    return checked(0);
  }
  int operator()(const VersionRequest&) const {
    std::cout << versionText();
    return checked(0);
  }
  int operator()(const UsageError& error) const {
    std::cerr << usageText(error);
    return 2;
  }
  int operator()(const ShowRequest& request) const {
    return runGuarded(
        request.script, [&] { return checked(showReport(request, std::cout, std::cerr, &noteLine)); },
        std::cerr);
  }
  int operator()(RunRequest request) const {
    request.privacyPage = privacyPage();
    return runGuarded(
        request.source, [&] { return runDesignTool(request, std::cout, std::cerr, &noteLine); }, std::cerr);
  }
};

}  // namespace

int main(int count, char** words) {
  try {
    const std::vector<std::string> arguments(words + 1, words + count);
    return std::visit(Perform(), readCommandLine(arguments, std::getenv("VESTRA_OUTBOX")));
  } catch (const std::exception& error) {
    std::cerr << "vestra-design-tool: " << error.what() << '\n';
    return 1;
  }
}
