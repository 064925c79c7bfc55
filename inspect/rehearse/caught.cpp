#include "rehearse/caught.h"

#include <algorithm>

#include <boost/filesystem/directory.hpp>
#include <boost/filesystem/operations.hpp>

#include "rehearse/private_place.h"

namespace vestra::inspect {
namespace {

namespace fs = boost::filesystem;

bool isKept(const fs::path& file) { return file.extension() == ".tcl" || file.extension() == ".wdm"; }

}  // namespace

int keepWhatWasCaught(const std::string& rehearsal, const std::vector<std::string>& words) {
  const auto source = std::find(words.begin(), words.end(), "-source");
  if (source == words.end() || source + 1 == words.end()) {
    return 1;
  }
  const fs::path folder = nextFolder(rehearsal);
  boost::system::error_code error;
  for (fs::directory_iterator file(fs::path(*(source + 1)).parent_path(), error);
       !error && file != fs::directory_iterator(); file.increment(error)) {
    if (isKept(file->path())) {
      fs::copy_file(file->path(), folder / file->path().filename(), error);
    }
  }
  return error ? 1 : 0;
}

}  // namespace vestra::inspect
