#include "identity/random_uuid.h"

#include <boost/uuid/random_generator.hpp>
#include <boost/uuid/uuid_io.hpp>

namespace Oza {

std::string randomUuid() {
  boost::uuids::random_generator generate;
  return boost::uuids::to_string(generate());
}

}  // namespace Oza
