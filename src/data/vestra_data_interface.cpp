#include <vestra/vestra_data.h>

namespace Oza {

VestraDataInterface::~VestraDataInterface() = default;

}  // namespace Oza
