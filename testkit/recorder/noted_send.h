#ifndef VESTRA_TESTKIT_RECORDER_NOTED_SEND_H
#define VESTRA_TESTKIT_RECORDER_NOTED_SEND_H

#include <climits>
#include <string_view>

#include <vestra/vestra.h>

#include "recorder/recording.h"

namespace vestra::testkit {

/// One call of `send`, from its beginning. Without an outcome, the process ended in it.
class NotedSend {
 public:
  NotedSend(const char* projectDir, Oza::Vestra::ProductType productType);

  /// @param details  joined fields of the exception that is the outcome
  void noteOutcome(const char* outcome, std::string_view details = "") const;

 private:
  NumberText number = nextNumber();
  char directory[2 * PATH_MAX];
  Digits product;
};

using SendFunction = bool (*)(const char* projectDir, Oza::Vestra::ProductType product);

/// Calls `send`. The sandbox's notes an exception and lets it pass; that of what is preloaded does not
/// note it, which would need the C++ library.
bool callSend(SendFunction send, const char* projectDir, Oza::Vestra::ProductType product,
              const NotedSend& noted);

}  // namespace vestra::testkit

#endif
