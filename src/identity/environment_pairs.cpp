#include "identity/environment_pairs.h"

#include <cstddef>
#include <utility>

#include "identity/fields.h"

namespace Oza {

std::vector<EnvironmentPair> environmentPairs(const std::string& text) {
  constexpr std::size_t USER_ENVIRONMENT_FIELDS = 12;
  std::vector<std::string> fields = fieldsOf(text, '#');
  std::vector<EnvironmentPair> pairs;
  for (std::size_t i = 0; i + 1 < fields.size(); i += 2) {
    const auto section =
        i < USER_ENVIRONMENT_FIELDS ? Vestra::USER_ENVIRONMENT : Vestra::SOFTWARE_VERSION_AND_TARGET_DEVICE;
    pairs.push_back({std::move(fields[i]), std::move(fields[i + 1]), section});
  }
  return pairs;
}

}  // namespace Oza
