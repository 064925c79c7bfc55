#ifndef VESTRA_INSPECT_FACTS_FACTS_H
#define VESTRA_INSPECT_FACTS_FACTS_H

#include <vector>

#include "facts/host_context.h"
#include "facts/prediction.h"
#include "facts/project_facts.h"
#include "facts/report_facts.h"
#include "facts/site_facts.h"
#include "facts/support_facts.h"
#include "facts/user_facts.h"

namespace vestra::inspect {

/// All that was looked at.
struct Facts {
  HostContext context;
  PersonFacts person;
  UserFacts user;
  ProjectFacts project;
  SiteFacts site;
  SupportFacts support;
  /// The scripts that lie in the project.
  std::vector<ReportFacts> reports;
  /// For every product, in their order.
  std::vector<ToolFacts> tools;
  std::vector<Prediction> predictions;
  /// Whose answers are wanted.
  std::vector<Product> products;
  /// Whether what identifies somebody is to be replaced by marks.
  bool isRedacted = false;

  /// A text that was read from settings or identity: quoted, or its mark where there is one.
  std::string secret(const std::string& text, const char* mark) const;

  const Prediction& predictionFor(Product product) const { return predictions.at(product); }
  const ToolFacts& toolFor(Product product) const { return tools.at(product); }
  const ReportFacts* reportOf(const std::string& product) const;
};

/// Looks at what all projects share: user, machine and support library.
Facts lookAtMachine(const HostContext& context);

/// Looks into a project.
/// @param products  Empty for those that left traces.
void lookInto(const std::string& directory, const std::vector<Product>& products, Facts& facts);

/// Reads the scripts that lie in the project.
void readReports(Facts& facts);

}  // namespace vestra::inspect

#endif
