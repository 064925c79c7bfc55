#include "recorder/send_call.h"

#include <vector>

#include "recorder/exception.h"

using namespace vestra::testkit;

bool vestra_testkit_call_send(SendFunction send, const char* projectDir, Oza::Vestra::ProductType product,
                              NoteThrown noteThrown, const void* context) {
  try {
    return send(projectDir, product);
  } catch (...) {
    const Exception exception = caughtException();
    const std::vector<std::string_view> fields = fieldsOf(exception);
    noteThrown(context, fields.data(), fields.size());
    throw;
  }
}
