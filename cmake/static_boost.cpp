// Needs of Boost.Filesystem what the library needs.
#include <boost/filesystem/operations.hpp>

bool isThere(const char* file) { return boost::filesystem::exists(file); }
