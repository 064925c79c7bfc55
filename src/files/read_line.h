#ifndef VESTRA_FILES_READ_LINE_H
#define VESTRA_FILES_READ_LINE_H

#include <istream>
#include <string>

namespace Oza {

/// Reads one line, without its end, as `std::getline` does. That takes running out
/// of memory for a read error, so that a file would seem to end there; this lets
/// std::bad_alloc out.
///
/// @return Whether there was a line. There is none after a read error, which leaves
///         the stream bad.
bool readLine(std::istream& in, std::string& line, char end = '\n');

}  // namespace Oza

#endif
