#include "support/scoped_locale.h"

#include <array>
#include <cstddef>
#include <string>

namespace vestra_test {
namespace {

class DigitGrouping : public std::numpunct<char> {
 protected:
  char do_thousands_sep() const override { return '\''; }
  std::string do_grouping() const override { return "\1"; }
};

class OddLetters : public std::ctype<char> {
 public:
  OddLetters() : std::ctype<char>(oddTable()) {}

 protected:
  char do_tolower(char letter) const override {
    return letter == 'Q' ? 'p' : std::ctype<char>::do_tolower(letter);
  }
  const char* do_tolower(char* begin, const char* end) const override {
    for (; begin != end; ++begin) {
      *begin = do_tolower(*begin);
    }
    return end;
  }

 private:
  static const mask* oddTable() {
    static const std::array<mask, table_size> odd = [] {
      std::array<mask, table_size> table{};
      for (std::size_t i = 0; i < table.size(); ++i) {
        table[i] = classic_table()[i];
      }
      table['_'] = space;
      table[' '] = print;
      return table;
    }();
    return odd.data();
  }
};

char otherCase(char letter) {
  const std::locale& classic = std::locale::classic();
  return std::islower(letter, classic) ? std::toupper(letter, classic) : std::tolower(letter, classic);
}

class CaseSwapping : public std::codecvt<char, char, std::mbstate_t> {
 protected:
  bool do_always_noconv() const noexcept override { return false; }
  int do_encoding() const noexcept override { return 1; }
  int do_max_length() const noexcept override { return 1; }
  int do_length(state_type&, const extern_type* from, const extern_type* end,
                std::size_t max) const override {
    return static_cast<int>(std::min(max, static_cast<std::size_t>(end - from)));
  }
  result do_out(state_type&, const intern_type* from, const intern_type* fromEnd,
                const intern_type*& fromNext, extern_type* to, extern_type* toEnd,
                extern_type*& toNext) const override {
    return swapCase(from, fromEnd, fromNext, to, toEnd, toNext);
  }
  result do_in(state_type&, const extern_type* from, const extern_type* fromEnd, const extern_type*& fromNext,
               intern_type* to, intern_type* toEnd, intern_type*& toNext) const override {
    return swapCase(from, fromEnd, fromNext, to, toEnd, toNext);
  }

 private:
  static result swapCase(const char* from, const char* fromEnd, const char*& fromNext, char* to, char* toEnd,
                         char*& toNext) {
    while (from != fromEnd && to != toEnd) {
      *to++ = otherCase(*from++);
    }
    fromNext = from;
    toNext = to;
    return from == fromEnd ? ok : partial;
  }
};

}  // namespace

ScopedLocale::ScopedLocale(const std::locale& locale) : before(std::locale::global(locale)) {}

ScopedLocale::~ScopedLocale() { std::locale::global(before); }

std::locale digitGroupingLocale() { return {std::locale::classic(), new DigitGrouping}; }

std::locale oddLettersLocale() { return {std::locale::classic(), new OddLetters}; }

std::locale caseSwappingFilesLocale() { return {std::locale::classic(), new CaseSwapping}; }

}  // namespace vestra_test
