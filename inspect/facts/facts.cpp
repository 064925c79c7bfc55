#include "facts/facts.h"

#include "reading/visible_text.h"

namespace vestra::inspect {
const ReportFacts* Facts::reportOf(const std::string& product) const {
  for (const ReportFacts& report : reports) {
    if (report.product == product) {
      return &report;
    }
  }
  return nullptr;
}

std::string Facts::secret(const std::string& text, const char* mark) const {
  return isRedacted && *mark != '\0' ? mark : reading::inQuotes(text);
}

Facts lookAtMachine(const HostContext& context) {
  Facts facts;
  facts.context = context;
  facts.person = lookAtPerson(context);
  facts.user = lookAtUser(context);
  facts.site = lookAtSite(context);
  facts.support = lookAtSupport(context);
  return facts;
}

void lookInto(const std::string& directory, const std::vector<Product>& products, Facts& facts) {
  facts.project = lookAtProject(facts.context, directory);
  facts.products = products.empty() ? productsOf(facts.project) : products;
  facts.tools.clear();
  facts.predictions.clear();
  for (const Product product : allProducts()) {
    facts.tools.push_back(lookAtTool(facts.context, facts.project, facts.support, product));
    facts.predictions.push_back(
        predict(facts.context, facts.user, facts.project, facts.support, facts.tools.back(), product));
  }
}

void readReports(Facts& facts) {
  for (const ReportFile& file : facts.project.files) {
    FileSnapshot script = file.role == "script" ? readFileAt(file.file.path) : FileSnapshot();
    if (script.text) {
      facts.reports.push_back(readReport(std::move(script), facts.person));
    }
  }
}

}  // namespace vestra::inspect
