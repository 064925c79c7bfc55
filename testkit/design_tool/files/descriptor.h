#ifndef VESTRA_DESIGN_TOOL_FILES_DESCRIPTOR_H
#define VESTRA_DESIGN_TOOL_FILES_DESCRIPTOR_H

#include <unistd.h>

#include <utility>

namespace vestra::design_tool {

/// An open file, or none, that is closed at the end.
class Descriptor {
 public:
  explicit Descriptor(int opened) : number(opened) {}
  Descriptor(Descriptor&& other) noexcept : number(std::exchange(other.number, -1)) {}
  Descriptor& operator=(Descriptor&& other) noexcept {
    std::swap(number, other.number);
    return *this;
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  ~Descriptor() {
    if (number >= 0) {
      ::close(number);
    }
  }

  bool isOpen() const { return number >= 0; }
  int get() const { return number; }

 private:
  int number;
};

}  // namespace vestra::design_tool

#endif
