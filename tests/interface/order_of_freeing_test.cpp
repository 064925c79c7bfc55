// What is freed before what, seen from an item's end: by how many blocks are in use then.

#include <memory>

#include "handler/vestra_handler.h"
#include "interface/failing_allocations.h"
#include "interface/vestra_mgr.h"
#include "support/test.h"

namespace Oza {
namespace {

/// An item that notes how many blocks are in use at its end.
class CountingItem : public VestraAddData {
 public:
  explicit CountingItem(long& count) : VestraAddData("k", "v", nullptr), blocks(count) {}
  ~CountingItem() override { blocks = blocksInUse(); }

 private:
  long& blocks;
};

class OrderOfFreeing : public Test {
 protected:
  /// How many blocks that `use` has taken are left at an item's end.
  template <typename Use>
  static long blocksLeftAtTheItemsEnd(Use use) {
    long atTheEnd = 0;
    // What is made once in a process is there then.
    use(new CountingItem(atTheEnd));
    const long before = blocksInUse();
    use(new CountingItem(atTheEnd));
    return atTheEnd - before;
  }

  /// Those of a handler by itself.
  long blocksOfAHandler(bool withIdentity) {
    return blocksLeftAtTheItemsEnd([&](VestraAddData* item) {
      const auto handler = std::make_unique<VestraHandler>();
      handler->setProjectDirectory(project.path());
      handler->addData(item, Vestra::KELVO_USAGE);
      if (withIdentity) {
        EXPECT_TRUE(handler->setupVestraInfo());
      }
    });
  }

  TemporaryDirectory home;
  TemporaryDirectory project;
  ScopedEnv homeVariable{"HOME", home.path()};
};

TEST_F(OrderOfFreeing, IdentityGoesBeforeTheItems) {
  EXPECT_EQ(blocksOfAHandler(true), blocksOfAHandler(false));
}

TEST_F(OrderOfFreeing, SettingsGoBeforeTheItems) {
  const long withSettings = blocksLeftAtTheItemsEnd([&](VestraAddData* item) {
    const VestraMgr manager;
    manager.getHandler()->setProjectDirectory(project.path());
    manager.getHandler()->addData(item, Vestra::KELVO_USAGE);
  });
  EXPECT_EQ(withSettings, blocksOfAHandler(false));
}

}  // namespace
}  // namespace Oza
