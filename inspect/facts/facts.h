#ifndef VESTRA_INSPECT_FACTS_FACTS_H
#define VESTRA_INSPECT_FACTS_FACTS_H

#include <vector>

#include "facts/prediction.h"
#include "facts/project_facts.h"
#include "facts/report_facts.h"
#include "facts/site_facts.h"
#include "facts/support_facts.h"
#include "facts/user_facts.h"
#include "facts/view.h"

namespace vestra::inspect {

/// All that was looked at.
struct Facts {
  View view;
  PersonFacts person;
  UserFacts user;
  ProjectFacts project;
  SiteFacts site;
  SupportFacts support;
  /// The scripts that lie in the project.
  std::vector<ReportFacts> reports;
  /// For every product, in their order.
  std::vector<Prediction> predictions;
  /// Whose answers are wanted.
  std::vector<Product> products;

  const Prediction& predictionFor(Product product) const { return predictions.at(product); }
  const ReportFacts* reportOf(const std::string& product) const;
};

/// Looks at everything, and changes nothing.
/// @param products  Empty for those that left traces.
Facts lookAtAll(const View& view, const std::string& directory, const std::vector<Product>& products);

}  // namespace vestra::inspect

#endif
