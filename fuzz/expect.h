#ifndef VESTRA_FUZZ_EXPECT_H
#define VESTRA_FUZZ_EXPECT_H

#include <cstdlib>
#include <iostream>

namespace vestra_fuzz {

/// Ends the program, so that the fuzzer keeps the input, when what must hold does not.
inline void expect(bool holds, const char* what) {
  if (!holds) {
    std::cerr << "does not hold: " << what << '\n';
    std::abort();
  }
}

}  // namespace vestra_fuzz

#endif
