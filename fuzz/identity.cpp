// The identity text: it is refused as no number, or what is read can be written and
// read again.

#include <cstdint>
#include <limits>
#include <sstream>
#include <stdexcept>

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
  std::istringstream in(std::string(reinterpret_cast<const char*>(data), size));
  ProjectIdentity identity;
  try {
    Oza::readProjectIdentity(in, identity);
  } catch (const std::invalid_argument&) {
    return 0;
  } catch (const std::out_of_range&) {
    return 0;
  }
  Oza::isReportDue(identity, Oza::Vestra::KELVO, 1542786245);
  if (canBeReadAgain(identity)) {
    std::istringstream again(Oza::formatProjectIdentity(identity));
    ProjectIdentity readAgain;
    Oza::readProjectIdentity(again, readAgain);
    expect(Oza::formatProjectIdentity(readAgain) == Oza::formatProjectIdentity(identity),
           "what was read can be written and read again");
  }
  return 0;
}
