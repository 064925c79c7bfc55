#include "handler/rules_file.h"

#include "data/contexts.h"
#include "handler/product_profile.h"

namespace Oza {
namespace {

// The format is fixed byte for byte: the trailing blanks, the closing braces that are
// indented further than the opening ones, and the empty line at the end.

std::string setting(const std::string& name, const std::string& value) {
  return "                " + name + "=\"" + value + "\";\n";
}

std::string rule(const ContextProfile& context) {
  return "            { \n" + setting("context", context.path) + setting("xml_map", context.path) +
         setting("html_map", context.path) + setting("html_format", htmlFormat(context.userEnvStyle)) +
         "            }";
}

std::string rulesOf(const std::string& client) {
  std::string rules;
  for (const ContextProfile& context : CONTEXTS) {
    if (client == context.client) {
      rules += (rules.empty() ? "" : ",\n") + rule(context);
    }
  }
  return rules;
}

std::string clientBlock(const std::string& client) {
  return "    { client_name = \"" + client + "\"; \n        rules = ( \n" + rulesOf(client) +
         "\n        );\n        }";
}

}  // namespace

std::string rulesFileText(Vestra::ProductType product) {
  return "version = \"1.0\";\nclients =\n(\n" + clientBlock("project") + ",\n\n" +
         clientBlock(profileOf(product).lowerCaseName) + "\n);\n\n";
}

}  // namespace Oza
