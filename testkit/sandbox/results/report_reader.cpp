#include "sandbox/results/report_reader.h"

#include <algorithm>
#include <stdexcept>

#include <boost/algorithm/hex.hpp>
#include <boost/filesystem.hpp>
#include <nlohmann/json.hpp>

#include "recorder/bytes.h"

namespace vestra::testkit {
namespace {

using nlohmann::json;

/// A byte string: as text where it is valid UTF-8, otherwise as its bytes.
std::string text(const json& value) {
  return value.is_string() ? value.get<std::string>()
                           : boost::algorithm::unhex(value.at("hex").get<std::string>());
}

template <typename Element, typename Read>
std::vector<Element> listOf(const json& values, Read read) {
  std::vector<Element> list;
  std::transform(values.begin(), values.end(), std::back_inserter(list), read);
  return list;
}

Item itemOf(const json& value) {
  return {text(value.at("client")), text(value.at("context")), text(value.at("key")),
          text(value.at("value"))};
}

Rule ruleOf(const json& value) {
  return {text(value.at("client")), text(value.at("context")), text(value.at("xml_map")),
          text(value.at("html_map")), text(value.at("html_format"))};
}

std::map<std::string, std::string> filesIn(const std::string& folder) {
  std::map<std::string, std::string> files;
  for (const boost::filesystem::directory_entry& entry : boost::filesystem::directory_iterator(folder)) {
    files[entry.path().filename().string()] = bytesOf(entry.path().string()).value_or("");
  }
  return files;
}

Report reportIn(const std::string& folder) {
  const auto bytes = bytesOf(folder + "/report.json");
  if (!bytes) {
    throw std::runtime_error("no report in " + folder);
  }
  const json value = json::parse(*bytes);
  Report report;
  report.folder = folder;
  report.files = filesIn(folder);
  report.clientId = text(value.at("client_id"));
  report.registrationId = text(value.at("registration_id"));
  report.intro = text(value.at("intro"));
  report.clients = listOf<std::string>(value.at("clients"), text);
  report.items = listOf<Item>(value.at("items"), itemOf);
  report.rules = listOf<Rule>(value.at("rules"), ruleOf);
  report.warnings = listOf<std::string>(value.at("warnings"), text);
  return report;
}

// The tool numbers its folders; what it still works on has a hidden name.
std::vector<std::string> foldersIn(const std::string& outbox) {
  std::vector<std::string> folders;
  if (boost::filesystem::is_directory(outbox)) {
    for (const boost::filesystem::directory_entry& entry : boost::filesystem::directory_iterator(outbox)) {
      if (entry.path().filename().string().front() != '.') {
        folders.push_back(entry.path().string());
      }
    }
  }
  std::sort(folders.begin(), folders.end());
  return folders;
}

}  // namespace

std::vector<Report> reportsIn(const std::string& outbox) {
  std::vector<Report> reports;
  for (const std::string& folder : foldersIn(outbox)) {
    reports.push_back(reportIn(folder));
  }
  return reports;
}

}  // namespace vestra::testkit
