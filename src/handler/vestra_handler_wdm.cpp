#include <fstream>

#include "files/file_size_signal.h"
#include "files/open_file.h"
#include "handler/vestra_handler.h"

namespace Oza {
namespace {

// The main design tool reads these files to the byte: the trailing blanks, the
// closing braces further in than the opening ones and the empty line at the end
// belong to the format.

void writeRule(std::ostream& out, const std::string& context, const char* style, const char* end) {
  out << "            { \n"
      << "                context=\"" << context << "\";\n"
      << "                xml_map=\"" << context << "\";\n"
      << "                html_map=\"" << context << "\";\n"
      << "                html_format=\"" << style << "\";\n"
      << "            }" << end << '\n';
}

void openClient(std::ostream& out, const std::string& client) {
  out << "    { client_name = \"" << client << "\"; \n"
      << "        rules = ( \n";
}

void closeClient(std::ostream& out, const char* end) {
  out << "        );\n"
      << "        }" << end << '\n';
}

void writeRules(std::ostream& out, const std::string& product) {
  out << "version = \"1.0\";\n"
      << "clients =\n"
      << "(\n";
  openClient(out, "project");
  writeRule(out, "software_version_and_target_device", "UserEnvStyle", ",");
  writeRule(out, "user_environment", "UserEnvStyle", "");
  closeClient(out, ",\n");
  openClient(out, product);
  writeRule(out, product + "\\\\command_line_options", "FennoxStatsStyle", ",");
  writeRule(out, product + "\\\\usage", "FennoxStatsStyle", "");
  closeClient(out, "");
  out << ");\n" << std::endl;
}

}  // namespace

void VestraHandler::createSimWdm() {
  FileSizeSignalHold hold;
  std::ofstream out;
  openFile(out, pathInVestraDirectory(getVestraWdm()), std::ios_base::trunc);
  writeRules(out, getProductNameL());
}

}  // namespace Oza
