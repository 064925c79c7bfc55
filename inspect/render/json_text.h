#ifndef VESTRA_INSPECT_RENDER_JSON_TEXT_H
#define VESTRA_INSPECT_RENDER_JSON_TEXT_H

#include <cstdint>
#include <string>

#include <nlohmann/json.hpp>

#include "checks/finding.h"
#include "facts/facts.h"
#include "rehearse/rehearsed.h"
#include "render/redaction.h"

namespace vestra::inspect {

using Json = nlohmann::ordered_json;

/// Writes documents of schema vestra-inspect/1. Byte texts are strings where they are UTF-8,
/// else {"hex": "..."}.
class JsonText {
 public:
  explicit JsonText(const Redaction& redact) : redaction(redact) {}

  Json statusOf(const Facts& facts, const Findings& findings, const std::string& verdict,
                const std::string& command) const;
  Json reportsOf(const Facts& facts, const std::vector<ReportFacts>& reports,
                 const std::string& verdict) const;
  /// A document that says only what went wrong.
  Json failure(const std::string& command, const std::string& reason) const;
  Json reportOf(const ReportFacts& report) const;
  Json rehearsalOf(const Rehearsal& rehearsal) const;

 private:
  Json head(const Facts& facts, const std::string& command, const std::string& verdict) const;
  Json text(const std::string& bytes) const;
  Json texts(const std::vector<std::string>& list) const;
  Json file(const LookedFile& looked) const;
  Json user(const Facts& facts) const;
  Json project(const Facts& facts) const;
  Json prediction(const Prediction& next) const;
  Json site(const SiteFacts& known) const;
  Json support(const SupportFacts& known) const;
  Json switches(const View& view) const;
  Json item(const ReportedItem& each) const;
  Json rehearsed(const Rehearsed& each) const;
  Json finding(const Finding& found) const;

  const Redaction& redaction;
};

}  // namespace vestra::inspect

#endif
