#include "files/open_file.h"

namespace Oza {

boost::filesystem::file_status statusOf(const std::string& path) {
  boost::system::error_code error;
  return boost::filesystem::status(path, error);
}

bool opensWithoutBlocking(const boost::filesystem::file_status& status, std::ios_base::openmode mode) {
  if (!boost::filesystem::exists(status)) {
    return true;
  }
  if ((mode & std::ios_base::in) != 0) {
    return boost::filesystem::is_regular_file(status);
  }
  return status.type() != boost::filesystem::fifo_file;
}

}  // namespace Oza
