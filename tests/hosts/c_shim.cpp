// What a host in C, or one that finds functions by name, calls instead of Vestra. The functions
// return -1 after an exception, because none may pass a C frame.
#include <vestra/vestra.h>

template <typename Call>
static int guarded(Call call) noexcept {
  try {
    return call() ? 1 : 0;
  } catch (...) {
    return -1;
  }
}

extern "C" int vestra_add(const char* key, const char* value, unsigned section) {
  return guarded([&] {
    Oza::Vestra::add(key, value, static_cast<Oza::Vestra::SectionType>(section));
    return true;
  });
}

extern "C" int vestra_send(const char* projectDir, unsigned product) {
  return guarded(
      [&] { return Oza::Vestra::send(projectDir, static_cast<Oza::Vestra::ProductType>(product)); });
}
