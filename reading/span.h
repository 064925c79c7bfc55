#ifndef VESTRA_READING_SPAN_H
#define VESTRA_READING_SPAN_H

#include <cstddef>

namespace vestra::reading {

/// A stretch of a text, by position.
struct Span {
  std::size_t begin = 0;
  std::size_t length = 0;
};

}  // namespace vestra::reading

#endif
