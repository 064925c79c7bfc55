// The identity text: it is refused because of a number, or what is read can be written and
// read again.

#include <cstdint>
#include <limits>
#include <stdexcept>
#include <string>

#include "expect.h"
#include "identity/project_identity.h"

using Oza::ProjectIdentity;
using vestra_fuzz::expect;

namespace {

// Kept unsigned, read signed: a negative iteration comes back as a number too large.
bool canBeReadAgain(const ProjectIdentity& identity) {
  return identity.iteration <= static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  ProjectIdentity identity;
  try {
    Oza::readProjectIdentity(text, identity);
  } catch (const std::invalid_argument&) {
    return 0;
  } catch (const std::out_of_range&) {
    return 0;
  }
  Oza::isReportDue(identity, Oza::Vestra::KELVO, 1542786245);
  if (canBeReadAgain(identity)) {
    ProjectIdentity readAgain;
    Oza::readProjectIdentity(Oza::formatProjectIdentity(identity), readAgain);
    expect(Oza::formatProjectIdentity(readAgain) == Oza::formatProjectIdentity(identity),
           "what was read can be written and read again");
  }
  return 0;
}
