#ifndef VESTRA_IDENTITY_ENVIRONMENT_PAIRS_H
#define VESTRA_IDENTITY_ENVIRONMENT_PAIRS_H

#include <string>
#include <vector>

#include <vestra/vestra.h>

namespace Oza {

/// One item that the support library gives to every report.
struct EnvironmentPair {
  std::string key;
  std::string value;
  Vestra::SectionType section;
};

/// The pairs of an environment text, key#value#key#value: the first six describe the
/// user's environment, those that follow the project. A key at the text's end whose
/// value is missing is left out.
std::vector<EnvironmentPair> environmentPairs(const std::string& text);

}  // namespace Oza

#endif
