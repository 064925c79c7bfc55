#include <memory>
#include <new>

#include "handler/site_detection.h"
#include "handler/vestra_handler.h"
#include "identity/vestra_project_info.h"
#include "identity/vestra_setting.h"
#include "interface/failing_allocations.h"
#include "interface/vestra_mgr.h"
#include "support/stand_in/stand_in_library.h"
#include "support/test.h"

namespace Oza {
namespace {

constexpr Vestra::SectionType PROJECT = Vestra::SOFTWARE_VERSION_AND_TARGET_DEVICE;

// Too long to live inside a string object.
const std::string LONG = "a text that does not fit into a string object without an allocation";

const std::string IDENTITY_NOT_DUE = identityText("9223372036854775807", "0", "42", "1", LONG);
const std::string IDENTITY_COUNTED = identityText("9223372036854775807", "0", "43", "1", LONG);

enum class Outcome { WENT_THROUGH, BAD_ALLOC };

/// Runs an operation with its n-th allocation failing. Any exception but
/// std::bad_alloc ends the test.
template <typename Operation>
Outcome runFailing(long position, bool& hasFailed, Operation operate) {
  const FailingAllocation failing(position);
  try {
    operate();
    hasFailed = failing.hasFailed();
    return Outcome::WENT_THROUGH;
  } catch (const std::bad_alloc&) {
    hasFailed = failing.hasFailed();
    return Outcome::BAD_ALLOC;
  }
}

/// Lets each allocation of an operation fail in turn, each time on a subject made
/// anew, until the operation needs no more of them. `check` gets the outcome and the
/// subject whenever one has failed. Whatever was allocated must be free at the end.
template <typename Make, typename Operate, typename Check>
void failEachAllocation(Make make, Operate operate, Check check) {
  { operate(*make()); }
  bool hasFailed = true;
  for (long position = 0; hasFailed; ++position) {
    const long before = blocksInUse();
    {
      const auto subject = make();
      const Outcome outcome = runFailing(position, hasFailed, [&] { operate(*subject); });
      if (hasFailed) {
        check(outcome, *subject);
      }
    }
    ASSERT_EQ(blocksInUse(), before) << "allocation " << position;
    ASSERT_TRUE(hasFailed || position > 0) << "nothing was allocated";
  }
}

struct Nothing {};

class OutOfMemory : public Test {
 protected:
  OutOfMemory() { writeFile(home / ".Calvix/Common/2018.2/vestra", "RandomID=" + LONG + "\n"); }

  std::unique_ptr<VestraHandler> makeHandler() const {
    auto handler = std::make_unique<VestraHandler>();
    handler->setProjectDirectory(project.path());
    return handler;
  }

  std::string identityFile() const { return project / "vestra/.kelvo_vestrra.info"; }

  TemporaryDirectory home;
  TemporaryDirectory project;
  ScopedEnv homeVariable{"HOME", home.path()};
};

TEST_F(OutOfMemory, NothingIsLeftOfWhatCannotBeMade) {
  VestraParentData context(LONG + "\\\\", LONG, true);
  context.addChild(new VestraAddData(LONG, LONG, &context));
  const std::string resolver = project / "resolv.conf";
  writeFile(resolver, LONG);
  const std::pair<const char*, std::function<void()>> rows[] = {
      {"a context with an item",
       [] {
         VestraParentData made(LONG, LONG, true);
         auto item = std::make_unique<VestraAddData>(LONG, LONG, &made);
         made.addChild(item.get());
         static_cast<void>(item.release());
       }},
      {"a handler", [] { const VestraHandler handler; }},
      {"settings", [] { const VestraSetting setting; }},
      {"a manager", [] { const VestraMgr manager; }},
      {"lines", [&] { context.toTclString(); }},
      {"a segment", [&] { context.toCRCSegment(); }},
      {"a rules block", [&] { context.getWdmString(); }},
      {"a site's text", [&] { EXPECT_EQ(siteText("", resolver), LONG); }},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.first);
    failEachAllocation([] { return std::make_unique<Nothing>(); }, [&](Nothing&) { row.second(); },
                       [](Outcome outcome, Nothing&) { EXPECT_EQ(outcome, Outcome::BAD_ALLOC); });
  }
}

TEST_F(OutOfMemory, ManagerOfTheProcessIsTriedAgain) {
  bool hasFailed = true;
  long failures = 0;
  for (; hasFailed; ++failures) {
    VestraMgr* manager = nullptr;
    runFailing(failures, hasFailed, [&] { manager = VestraMgr::getInstance(); });
    EXPECT_EQ(manager == nullptr, hasFailed);
  }
  EXPECT_GT(failures, 1);
  EXPECT_EQ(VestraMgr::getInstance()->getSetting()->getRandomId(), LONG);
}

TEST_F(OutOfMemory, AddingAnItemLeavesTheContextAsItWas) {
  failEachAllocation([&] { return makeHandler(); },
                     [](VestraHandler& handler) { handler.addData(LONG, LONG, Vestra::KELVO_USAGE); },
                     [](Outcome outcome, VestraHandler& handler) {
                       EXPECT_EQ(outcome, Outcome::BAD_ALLOC);
                       EXPECT_TRUE(handler.isParentEmpty(Vestra::KELVO_USAGE));
                     });
}

TEST_F(OutOfMemory, OrderingTheProjectsFactsLosesNone) {
  failEachAllocation(
      [&] {
        auto handler = makeHandler();
        handler->addData("target_speed", LONG, PROJECT);
        handler->addData("unknown", LONG, PROJECT);
        handler->addData("Project_ID", LONG, PROJECT);
        handler->addData("project_id", "second", PROJECT);
        return handler;
      },
      [](VestraHandler& handler) { handler.uniqueAndReorderData(); },
      [](Outcome outcome, VestraHandler& handler) {
        EXPECT_EQ(outcome, Outcome::BAD_ALLOC);
        EXPECT_EQ(handler.getOrbeloProjectId(), LONG);
        handler.uniqueAndReorderData();
        EXPECT_EQ(handler.getOrbeloProjectId(), LONG);
      });
}

TEST_F(OutOfMemory, SettingTheProjectDirectoryLeavesTheOldOne) {
  failEachAllocation([&] { return makeHandler(); },
                     [](VestraHandler& handler) { handler.setProjectDirectory("/another" + LONG); },
                     [&](Outcome outcome, VestraHandler& handler) {
                       EXPECT_EQ(outcome, Outcome::BAD_ALLOC);
                       EXPECT_EQ(handler.getLogFileName(), project / "vestra/tavlo_vestra.log");
                     });
}

TEST_F(OutOfMemory, WritingTheRulesFileLeavesNothing) {
  writeFile(project / "vestra/placeholder", "");
  failEachAllocation([&] { return makeHandler(); }, [](VestraHandler& handler) { handler.createSimWdm(); },
                     [](Outcome outcome, VestraHandler&) { EXPECT_EQ(outcome, Outcome::BAD_ALLOC); });
}

TEST_F(OutOfMemory, MakingARandomIdGivesNoneOrThrowsAndCanBeTriedAgain) {
  const std::string file = home / ".Calvix/Common/2018.2/vestra";
  std::string identifier;
  failEachAllocation(
      [&] {
        unlink(file.c_str());
        identifier.assign("none yet");
        return std::make_unique<VestraSetting>();
      },
      [&](VestraSetting& setting) { identifier = setting.getRandomId(); },
      [&](Outcome outcome, VestraSetting& setting) {
        EXPECT_EQ(identifier, outcome == Outcome::BAD_ALLOC ? "none yet" : "");
        EXPECT_EQ(setting.getRandomId().size(), 36U);
      });
}

TEST_F(OutOfMemory, LoadingAnIdentityGivesFalseAndKeepsTheFile) {
  const std::string good = identityText("1", "2", "42", "0", LONG);
  VestraHandler owner;
  bool loaded = false;
  failEachAllocation(
      [&] {
        writeFile(identityFile(), good);
        return std::make_unique<VestraProjectInfo>(identityFile(), &owner);
      },
      [&](VestraProjectInfo& record) { loaded = record.loadOrCreate(); },
      [&](Outcome outcome, VestraProjectInfo&) {
        EXPECT_EQ(outcome, Outcome::WENT_THROUGH);
        EXPECT_FALSE(loaded);
        EXPECT_EQ(readFile(identityFile()), good);
      });
  EXPECT_TRUE(loaded);
}

TEST_F(OutOfMemory, MakingANewIdentityGivesFalse) {
  VestraHandler owner;
  bool loaded = false;
  failEachAllocation(
      [&] {
        unlink(identityFile().c_str());
        return std::make_unique<VestraProjectInfo>(identityFile(), &owner);
      },
      [&](VestraProjectInfo& record) { loaded = record.loadOrCreate(); },
      [&](Outcome outcome, VestraProjectInfo&) {
        EXPECT_EQ(outcome, Outcome::WENT_THROUGH);
        EXPECT_FALSE(loaded);
      });
  EXPECT_TRUE(loaded);
}

/// A handler that prepares or sends a report, its answer, and what it needs for it.
class ReportOutOfMemory : public OutOfMemory {
 protected:
  ReportOutOfMemory() { library.nameRegistration(LONG); }

  std::unique_ptr<VestraHandler> makeHandlerWithItems() const {
    writeFile(identityFile(), identityText("0", "0", "42", "1", LONG));
    auto handler = makeHandler();
    handler->addData("project_id", LONG, PROJECT);
    handler->addData("unknown", LONG, PROJECT);
    handler->addData("runs", LONG, Vestra::KELVO_USAGE);
    return handler;
  }

  StandInLibrary library;
};

TEST_F(ReportOutOfMemory, PreparingGivesFalseOrThrowsAndCanBeTriedAgain) {
  bool prepared = false;
  failEachAllocation([&] { return makeHandlerWithItems(); },
                     [&](VestraHandler& handler) {
                       prepared = false;
                       prepared = handler.prepareVestraData();
                     },
                     [&](Outcome, VestraHandler& handler) {
                       EXPECT_FALSE(prepared);
                       EXPECT_TRUE(handler.prepareVestraData());
                       EXPECT_EQ(handler.getOrbeloProjectId(), LONG);
                     });
  EXPECT_TRUE(prepared);
}

TEST_F(ReportOutOfMemory, RunningThrowsAndCanBeTriedAgain) {
  failEachAllocation(
      [&] {
        auto handler = makeHandlerWithItems();
        handler->prepareVestraData();
        return handler;
      },
      [](VestraHandler& handler) { handler.execVestraData(); },
      [](Outcome outcome, VestraHandler& handler) {
        EXPECT_EQ(outcome, Outcome::BAD_ALLOC);
        EXPECT_TRUE(handler.prepareVestraData());
        EXPECT_TRUE(handler.execVestraData());
      });
}

TEST_F(ReportOutOfMemory, SendingLeavesTheOldOrTheNewIdentityAndNothingElse) {
  failEachAllocation(
      [&] {
        auto handler = makeHandlerWithItems();
        writeFile(identityFile(), IDENTITY_NOT_DUE);
        return handler;
      },
      [](VestraHandler& handler) { handler.prepareVestraData() && handler.sendVestraData(); },
      [&](Outcome, VestraHandler&) {
        const std::string identity = readFile(identityFile());
        EXPECT_TRUE(identity == IDENTITY_NOT_DUE || identity == IDENTITY_COUNTED) << identity;
        for (const std::string& name : namesIn(project / "vestra")) {
          EXPECT_NE(name.rfind(".vestra-", 0), 0U) << name;
        }
      });
}

TEST_F(ReportOutOfMemory, CountingAnAttemptThrows) {
  VestraHandler owner;
  failEachAllocation(
      [&] {
        writeFile(identityFile(), IDENTITY_NOT_DUE);
        auto record = std::make_unique<VestraProjectInfo>(identityFile(), &owner);
        EXPECT_TRUE(record->loadOrCreate());
        return record;
      },
      [](VestraProjectInfo& record) { record.recordSendAttempt(); },
      [&](Outcome outcome, VestraProjectInfo& record) {
        EXPECT_EQ(outcome, Outcome::BAD_ALLOC);
        EXPECT_EQ(readFile(identityFile()), IDENTITY_NOT_DUE);
        EXPECT_FALSE(record.recordSendAttempt());
        EXPECT_EQ(readFile(identityFile()), IDENTITY_COUNTED);
      });
}

}  // namespace
}  // namespace Oza
