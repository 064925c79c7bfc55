// A host that reports what it is told to.
//
//     items_host PROJECT_DIRECTORY KELVO|KELVO_ALT|TAVLO [KEY VALUE]...

#include <cstdlib>
#include <cstring>
#include <exception>
#include <iostream>

#include <vestra/vestra.h>

namespace {

Oza::Vestra::ProductType productOf(const char* name) {
  return std::strcmp(name, "TAVLO") == 0       ? Oza::Vestra::TAVLO
         : std::strcmp(name, "KELVO_ALT") == 0 ? Oza::Vestra::KELVO_ALT
                                               : Oza::Vestra::KELVO;
}

}  // namespace

int main(int count, char** words) {
  const Oza::Vestra::ProductType product = productOf(words[2]);
  const auto section = product == Oza::Vestra::TAVLO ? Oza::Vestra::TAVLO_USAGE : Oza::Vestra::KELVO_USAGE;
  try {
    for (int i = 3; i + 1 < count; i += 2) {
      Oza::Vestra::add(words[i], words[i + 1], section);
    }
    std::cout << (Oza::Vestra::send(words[1], product) ? "true" : "false") << '\n';
    // A host that reports twice says so by its environment.
    if (std::getenv("SEND_TWICE") != nullptr) {
      std::cout << (Oza::Vestra::send(words[1], product) ? "true" : "false") << '\n';
    }
  } catch (const std::exception& error) {
    std::cout << "exception: " << error.what() << '\n';
    return 3;
  }
  const char* home = std::getenv("HOME");
  std::cout << "home " << (home != nullptr ? home : "(none)") << '\n'
            << (Oza::Vestra::internal() ? "internal" : "external") << '\n';
  return 0;
}
