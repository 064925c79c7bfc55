#ifndef VESTRA_TESTKIT_RECORDER_SEND_CALL_H
#define VESTRA_TESTKIT_RECORDER_SEND_CALL_H

#include <cstddef>
#include <string_view>

#include <vestra/vestra.h>

namespace vestra::testkit {

using SendFunction = bool (*)(const char* projectDir, Oza::Vestra::ProductType product);

/// Gets the fields of an exception: see fieldsOf.
using NoteThrown = void (*)(const void* context, const std::string_view* fields, std::size_t count);

using SendCall = bool (*)(SendFunction, const char*, Oza::Vestra::ProductType, NoteThrown,
                          const void* context);

/// The function below. What is preloaded has it in an object of its own, which needs the C++ library
/// as every program does that calls `send`.
SendCall sendCall();

}  // namespace vestra::testkit

/// Calls `send` and lets its exception pass after it was noted.
extern "C" __attribute__((visibility("default"))) bool vestra_testkit_call_send(
    vestra::testkit::SendFunction send, const char* projectDir, Oza::Vestra::ProductType product,
    vestra::testkit::NoteThrown noteThrown, const void* context);

#endif
