#include "facts/host_context.h"

#include <unistd.h>

#include "identity/vestra_setting.h"

namespace vestra::inspect {
namespace {

void addEntry(const std::string& entry, Environment& environment) {
  const std::size_t equals = entry.find('=');
  if (equals != std::string::npos) {
    environment.emplace(entry.substr(0, equals), entry.substr(equals + 1));
  }
}

}  // namespace

std::string HostContext::variable(const std::string& name) const {
  const auto found = environment.find(name);
  return found == environment.end() ? std::string() : found->second;
}

bool HostContext::isSwitchedOn(const std::string& name) const { return !variable(name).empty(); }

std::string HostContext::settingsPath() const { return Oza::settingsPath(variable("HOME").c_str()); }

Environment ownEnvironment() {
  Environment environment;
  for (char** entry = environ; *entry != nullptr; ++entry) {
    addEntry(*entry, environment);
  }
  return environment;
}

Environment environmentIn(const std::string& text) {
  const char separator = text.find('\0') == std::string::npos ? '\n' : '\0';
  Environment environment;
  for (std::size_t begin = 0; begin < text.size();) {
    const std::size_t end = std::min(text.find(separator, begin), text.size());
    addEntry(text.substr(begin, end - begin), environment);
    begin = end + 1;
  }
  return environment;
}

const char* nameOf(Product product) {
  switch (product) {
    case Oza::Vestra::KELVO:
      return "KELVO";
    case Oza::Vestra::KELVO_ALT:
      return "KELVO_ALT";
    default:
      return "TAVLO";
  }
}

const std::vector<Product>& allProducts() {
  static const std::vector<Product> products = {Oza::Vestra::KELVO, Oza::Vestra::KELVO_ALT,
                                                Oza::Vestra::TAVLO};
  return products;
}

}  // namespace vestra::inspect
