#include "report_under_test.h"

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <memory>

#include "data/contexts.h"
#include "data/crc32.h"
#include "design_tool/diagnosis/diagnostic.h"
#include "design_tool/script/script_evaluation.h"
#include "handler/product_profile.h"
#include "handler/project_facts.h"
#include "handler/report_script.h"
#include "identity/environment_pairs.h"

namespace vestra_fuzz {
namespace {

/// The six contexts of a report.
class Contexts {
 public:
  Contexts() {
    for (const Oza::ContextProfile& profile : Oza::CONTEXTS) {
      contexts.push_back(
          std::make_unique<Oza::VestraParentData>(profile.path, profile.client, profile.userEnvStyle));
    }
  }

  Oza::VestraParentData& at(Oza::Vestra::SectionType section) { return *contexts.at(section); }

  void add(const std::string& key, const std::string& value, Oza::Vestra::SectionType section) {
    at(section).addChild(std::make_unique<Oza::VestraAddData>(key, value, &at(section)).release());
  }

  std::vector<Oza::VestraDataInterface*> all() const {
    std::vector<Oza::VestraDataInterface*> nodes;
    for (const auto& context : contexts) {
      nodes.push_back(context.get());
    }
    return nodes;
  }

 private:
  std::vector<std::unique_ptr<Oza::VestraParentData>> contexts;
};

}  // namespace

std::string scriptOf(const std::vector<Item>& items, const std::string& environment) {
  Contexts contexts;
  for (const Item& item : items) {
    contexts.add(item.key, item.value, item.section);
  }
  for (const Oza::EnvironmentPair& pair : Oza::environmentPairs(environment)) {
    contexts.add(pair.key, pair.value, pair.section);
  }
  Oza::orderProjectFacts(contexts.at(Oza::Vestra::SOFTWARE_VERSION_AND_TARGET_DEVICE));
  const std::string directory = Oza::vestraDirectoryOf("/project");
  Oza::CollectedText text{Oza::initLine(directory), {}};
  text.checksum.append("325201808");
  Oza::appendContexts(contexts.all(), text);
  return text.lines +
         Oza::transmitLines(text.checksum.value(), "registration", directory, Oza::Vestra::KELVO);
}

std::optional<vestra::design_tool::Report> reportOf(const std::string& script) {
  try {
    return vestra::design_tool::evaluateScript("script", script, 100'000, 1);
  } catch (const vestra::design_tool::DiagnosedError&) {
    return std::nullopt;
  }
}

bool isPlain(const std::string& text) {
  return !text.empty() && std::all_of(text.begin(), text.end(), [](unsigned char letter) {
    return std::isalnum(letter) != 0 || letter == '_' || letter == '.';
  });
}

}  // namespace vestra_fuzz
