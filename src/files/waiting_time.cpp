#include "files/waiting_time.h"

#include <algorithm>
#include <thread>

namespace Oza {
namespace {

constexpr std::chrono::nanoseconds LONGEST_PAUSE = std::chrono::milliseconds(4);

}  // namespace

bool WaitingTime::pause(std::chrono::nanoseconds kept) {
  if (left <= kept) {
    return false;
  }
  const auto begin = std::chrono::steady_clock::now();
  std::this_thread::sleep_for(std::min(next, left - kept));
  left -= std::chrono::steady_clock::now() - begin;
  next = std::min(2 * next, LONGEST_PAUSE);
  return true;
}

}  // namespace Oza
