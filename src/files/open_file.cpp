#include "files/open_file.h"

#include <boost/filesystem/operations.hpp>

namespace Oza {

bool opensWithoutWaiting(const std::string& path, std::ios_base::openmode mode) {
  boost::system::error_code error;
  const boost::filesystem::file_status status = boost::filesystem::status(path, error);
  if (!boost::filesystem::exists(status)) {
    return true;
  }
  if ((mode & std::ios_base::in) != 0) {
    return boost::filesystem::is_regular_file(status);
  }
  return status.type() != boost::filesystem::fifo_file;
}

}  // namespace Oza
