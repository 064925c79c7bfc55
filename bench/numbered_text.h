#ifndef VESTRA_BENCH_NUMBERED_TEXT_H
#define VESTRA_BENCH_NUMBERED_TEXT_H

#include <cstddef>
#include <string>

namespace vestra_bench {

/// Distinct texts of one length: a letter and a number, padded with zeros. Making the next
/// one allocates nothing and takes almost no time.
class NumberedText {
 public:
  NumberedText(char letter, std::size_t length) : text(length, '0') { text[0] = letter; }

  /// The next text, from 1 on. Valid until the next call.
  const char* next() {
    std::size_t digit = text.size() - 1;
    for (; digit > 0 && text[digit] == '9'; --digit) {
      text[digit] = '0';
    }
    ++text[digit];
    return text.c_str();
  }

 private:
  std::string text;
};

}  // namespace vestra_bench

#endif
