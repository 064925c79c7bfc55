#ifndef VESTRA_TESTS_SUPPORT_SCOPED_LOCALE_H
#define VESTRA_TESTS_SUPPORT_SCOPED_LOCALE_H

#include <locale>

namespace vestra_test {

/// Makes a locale the global one and puts the old one back at the end.
class ScopedLocale {
 public:
  explicit ScopedLocale(const std::locale& locale);
  ScopedLocale(const ScopedLocale&) = delete;
  ScopedLocale& operator=(const ScopedLocale&) = delete;
  ~ScopedLocale();

 private:
  std::locale before;
};

/// A locale that writes 1234 as 1'2'3'4.
std::locale digitGroupingLocale();

/// A locale whose lower-case form of "Q" is "p" and in which "_" is white space and
/// a blank is none; otherwise the classic one.
std::locale oddLettersLocale();

/// A locale whose file streams turn every letter to the other case, both ways.
std::locale caseSwappingFilesLocale();

}  // namespace vestra_test

#endif
