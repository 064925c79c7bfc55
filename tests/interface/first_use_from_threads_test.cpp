#include <atomic>
#include <set>
#include <thread>

#include "interface/vestra_mgr.h"
#include "support/test.h"

namespace Oza {
namespace {

// Nothing else may use the manager in this program.
TEST(FirstUseFromThreads, MakesOneManagerForAll) {
  constexpr unsigned int threadCount = 16;
  const TemporaryDirectory home;
  const ScopedEnv homeVariable("HOME", home.path());

  std::atomic<unsigned int> ready{0};
  std::vector<VestraMgr*> managers(threadCount);
  std::vector<VestraHandler*> handlers(threadCount);
  std::vector<std::thread> threads;
  for (unsigned int i = 0; i < threadCount; ++i) {
    threads.emplace_back([&, i] {
      ++ready;
      while (ready < threadCount) {
        std::this_thread::yield();
      }
      managers[i] = VestraMgr::getInstance();
      handlers[i] = managers[i]->getHandler();
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }

  EXPECT_EQ(std::set<VestraMgr*>(managers.begin(), managers.end()).size(), 1U);
  EXPECT_EQ(std::set<VestraHandler*>(handlers.begin(), handlers.end()).size(), 1U);
  EXPECT_TRUE(handlers[0]->isParentEmpty(0));
}

}  // namespace
}  // namespace Oza
