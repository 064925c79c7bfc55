#include "facts/facts.h"

namespace vestra::inspect {
namespace {

void readReports(Facts& facts) {
  for (const ReportFile& file : facts.project.files) {
    if (file.role != "script") {
      continue;
    }
    LookedFile script = readFileAt(file.file.path);
    if (script.text) {
      facts.reports.push_back(readReport(std::move(script), facts.person));
    }
  }
}

}  // namespace

const ReportFacts* Facts::reportOf(const std::string& product) const {
  for (const ReportFacts& report : reports) {
    if (report.product == product) {
      return &report;
    }
  }
  return nullptr;
}

Facts lookAtAll(const View& view, const std::string& directory, const std::vector<Product>& products) {
  Facts facts;
  facts.view = view;
  facts.person = lookAtPerson(view);
  facts.user = lookAtUser(view);
  facts.project = lookAtProject(view, directory);
  facts.site = lookAtSite(view);
  facts.support = lookAtSupport(view);
  readReports(facts);
  facts.products = products.empty() ? productsOf(facts.project) : products;
  for (const Product product : allProducts()) {
    facts.predictions.push_back(predict(view, facts.user, facts.project, facts.support, product));
  }
  return facts;
}

}  // namespace vestra::inspect
