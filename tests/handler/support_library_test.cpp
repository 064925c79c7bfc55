#include "handler/support_library.h"

#include "support/stand_in/stand_in_library.h"
#include "support/test.h"

namespace Oza {
namespace {

TEST(SupportLibrary, ThatIsMissingCannotBeOpened) {
  EXPECT_EQ(support_library::open(), nullptr);
  EXPECT_FALSE(support_library::isOpen());
}

TEST(SupportLibrary, IsOpenAndLoadedBetweenOpeningAndClosing) {
  StandInLibrary library;
  EXPECT_FALSE(support_library::isOpen());
  void* handle = support_library::open();
  ASSERT_NE(handle, nullptr);
  EXPECT_TRUE(support_library::isOpen());
  EXPECT_EQ(library.calls(), "");
  support_library::close(handle);
  EXPECT_FALSE(support_library::isOpen());
  EXPECT_FALSE(library.isHeldByAnother());
}

TEST(SupportLibrary, IsAskedAnewEachTime) {
  StandInLibrary library;
  support_library::open();
  for (const char* answer : {"/opt/design/bin/tool", ""}) {
    library.nameTool(answer);
    library.nameRegistration(answer);
    library.describeEnvironment(answer);
    EXPECT_EQ(support_library::execPath(), answer);
    EXPECT_EQ(support_library::registrationId(), answer);
    EXPECT_EQ(support_library::environmentData(*answer == '\0' ? nullptr : "KELVO"), answer);
  }
  EXPECT_EQ(library.calls(),
            "oza_vestra_exec_path()\n"
            "oza_vestra_regid(Implementation)\n"
            "oza_vestra_enviroment_data(KELVO)\n"
            "oza_vestra_exec_path()\n"
            "oza_vestra_regid(Implementation)\n"
            "oza_vestra_enviroment_data(null)\n");
}

TEST(SupportLibrary, ThrowsWhenItReturnsNullOrLacksAnEntryPoint) {
  const std::string isNull = "basic_string::_M_construct null not valid";
  const std::string lacks = "libqvzcommonvestrasupport.so lacks ";
  const struct {
    const char* variant;
    bool isOpen;
    std::string tool;
    std::string registration;
    std::string environment;
  } rows[] = {
      {"whole", true, isNull, isNull, isNull},
      {"no_exec_path", false, lacks + "oza_vestra_exec_path", isNull, isNull},
      {"no_regid", true, isNull, lacks + "oza_vestra_regid", isNull},
      {"no_environment", true, isNull, isNull, lacks + "oza_vestra_enviroment_data"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.variant);
    StandInLibrary library(row.variant);
    library.nameTool(std::nullopt);
    library.nameRegistration(std::nullopt);
    library.describeEnvironment(std::nullopt);
    void* handle = support_library::open();
    EXPECT_NE(handle, nullptr);
    EXPECT_EQ(support_library::isOpen(), row.isOpen);
    EXPECT_EQ(errorOf([] { support_library::execPath(); }), row.tool);
    EXPECT_EQ(errorOf([] { support_library::registrationId(); }), row.registration);
    EXPECT_EQ(errorOf([] { support_library::environmentData("KELVO"); }), row.environment);
    support_library::close(handle);
  }
}

}  // namespace
}  // namespace Oza
