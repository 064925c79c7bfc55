// The source of the support libraries of these tests. Answers are what the test
// sets; each call is written down as one line.

#include <cstring>

extern "C" {

char stand_in_calls[65536] = "";
const char* stand_in_exec_path = nullptr;
const char* stand_in_regid = nullptr;
const char* stand_in_environment = nullptr;

}  // extern "C"

namespace {

void append(const char* text) {
  std::strncat(stand_in_calls, text, sizeof stand_in_calls - std::strlen(stand_in_calls) - 1);
}

void note(const char* symbol, const char* argument) {
  append(symbol);
  append("(");
  append(argument);
  append(")\n");
}

[[maybe_unused]] void noteCall(const char* symbol) { note(symbol, ""); }

[[maybe_unused]] void noteCall(const char* symbol, const char* argument) {
  note(symbol, argument != nullptr ? argument : "null");
}

}  // namespace

extern "C" {

#ifndef WITHOUT_EXEC_PATH
const char* oza_vestra_exec_path() {
  noteCall("oza_vestra_exec_path");
  return stand_in_exec_path;
}
#endif

#ifndef WITHOUT_REGID
const char* oza_vestra_regid(const char* kind) {
  noteCall("oza_vestra_regid", kind);
  return stand_in_regid;
}
#endif

#ifndef WITHOUT_ENVIRONMENT
const char* oza_vestra_enviroment_data(const char* product) {
  noteCall("oza_vestra_enviroment_data", product);
  return stand_in_environment;
}
#endif

}  // extern "C"
