#include <gtest/gtest.h>

#include "testkit/design_tool/script/error_text.h"
#include "testkit/design_tool/script/script_text.h"

namespace vestra::design_tool {
namespace {

const std::string INIT = "vestra_init -vestra_dir /p/vestra/\n";
const std::string TRANSMIT = "vestra_transmit -clientid 1 -regid R -xml x -html h -wdm w -intro I\n";

std::string transmitWith(const std::string& clientId) {
  return INIT + "vestra_transmit -clientid " + clientId +
         " -regid R -xml x -html h -wdm w -intro I\nvestra_terminate\n";
}

TEST(Protocol, AShortReportIsComplete) {
  EXPECT_EQ(errorOf(INIT + TRANSMIT + "vestra_terminate\n"), "no error");
}

TEST(Protocol, NothingComesBeforeInit) {
  EXPECT_EQ(errorOf("vestra_register_client -client kelvo\n"),
            "s.tcl:1: vestra_register_client comes before vestra_init\n"
            "    vestra_register_client -client kelvo\n"
            "    ^~~~~~~~~~~~~~~~~~~~~~\n");
  EXPECT_EQ(errorOf("\n" + TRANSMIT),
            "s.tcl:2: vestra_transmit comes before vestra_init\n"
            "    vestra_transmit -clientid 1 -regid R -xml x -html h -wdm w -intro I\n"
            "    ^~~~~~~~~~~~~~~\n");
}

TEST(Protocol, InitAndTransmitComeOnce) {
  EXPECT_EQ(errorOf(INIT + INIT),
            "s.tcl:2: vestra_init is given twice\n"
            "    vestra_init -vestra_dir /p/vestra/\n"
            "    ^~~~~~~~~~~\n");
  EXPECT_EQ(errorOf(INIT + TRANSMIT + TRANSMIT),
            "s.tcl:3: vestra_transmit is given twice\n"
            "    vestra_transmit -clientid 1 -regid R -xml x -html h -wdm w -intro I\n"
            "    ^~~~~~~~~~~~~~~\n");
}

TEST(Protocol, NoDataComesAfterTransmit) {
  EXPECT_EQ(errorOf(INIT + TRANSMIT + addData("kelvo", "k", "v", "c")),
            "s.tcl:3: vestra_add_data comes after vestra_transmit\n"
            "    vestra_add_data -client kelvo -key k -value \"v\" -context \"c\"\n"
            "    ^~~~~~~~~~~~~~~\n");
}

TEST(Protocol, TerminateNeedsATransmit) {
  EXPECT_EQ(errorOf(INIT + "vestra_terminate\n"),
            "s.tcl:2: vestra_terminate comes before vestra_transmit\n"
            "    vestra_terminate\n"
            "    ^~~~~~~~~~~~~~~~\n");
}

TEST(Protocol, NothingFollowsTerminate) {
  EXPECT_EQ(errorOf(INIT + TRANSMIT + "vestra_terminate\nset a 1\n"),
            "s.tcl:4: nothing may follow vestra_terminate\n"
            "    set a 1\n"
            "    ^~~\n");
  EXPECT_EQ(errorOf(INIT + TRANSMIT + "if 1 {vestra_terminate; vestra_terminate}\n"),
            "s.tcl:3: vestra_terminate comes after vestra_terminate\n"
            "    if 1 {vestra_terminate; vestra_terminate}\n"
            "    ^~\n");
}

TEST(Protocol, CommentsAndBlankLinesMayFollowTerminate) {
  EXPECT_EQ(errorOf(INIT + TRANSMIT + "vestra_terminate\n\n# the end\n"), "no error");
}

TEST(Protocol, AScriptThatEndsEarlyIsToldWhatIsMissing) {
  EXPECT_EQ(errorOf(""), "s.tcl:1: the script ends without vestra_init\n");
  EXPECT_EQ(errorOf("\n\n"), "s.tcl:1: the script ends without vestra_init\n");
  EXPECT_EQ(errorOf(INIT + "# data\n\n"), "s.tcl:2: the script ends without vestra_transmit\n");
  EXPECT_EQ(errorOf(INIT + TRANSMIT), "s.tcl:2: the script ends without vestra_terminate\n");
}

TEST(Protocol, AnUnknownOptionIsMarked) {
  EXPECT_EQ(errorOf(INIT + "vestra_add_data -client kelvo -key runs -val \"2\" -context \"c\"\n"),
            "s.tcl:2: vestra_add_data: unknown option \"-val\"; it takes -client, -key, -value, -context\n"
            "    vestra_add_data -client kelvo -key runs -val \"2\" -context \"c\"\n"
            "                                            ^~~~\n");
}

TEST(Protocol, AMissingOptionIsNamed) {
  EXPECT_EQ(errorOf(INIT + "vestra_add_data -client kelvo -key runs -value \"2\"\n"),
            "s.tcl:2: vestra_add_data: option -context is missing\n"
            "    vestra_add_data -client kelvo -key runs -value \"2\"\n"
            "    ^~~~~~~~~~~~~~~\n");
}

TEST(Protocol, EachOptionOfTransmitIsNeeded) {
  for (const std::string option : {"-clientid 1", "-regid R", "-xml x", "-html h", "-wdm w", "-intro I"}) {
    std::string transmit = TRANSMIT;
    transmit.erase(transmit.find(option), option.size());
    const std::string name = option.substr(0, option.find(' '));
    EXPECT_EQ(errorOf(INIT + transmit), "s.tcl:2: vestra_transmit: option " + name + " is missing\n    " +
                                            transmit + "    ^~~~~~~~~~~~~~~\n");
  }
}

TEST(Protocol, AnOptionWithoutAValueIsMarked) {
  EXPECT_EQ(errorOf("vestra_init -vestra_dir\n"),
            "s.tcl:1: vestra_init: option -vestra_dir has no value\n"
            "    vestra_init -vestra_dir\n"
            "                ^~~~~~~~~~~\n");
}

TEST(Protocol, AnOptionGivenTwiceIsMarkedTheSecondTime) {
  EXPECT_EQ(errorOf("vestra_init -vestra_dir a -vestra_dir b\n"),
            "s.tcl:1: vestra_init: option -vestra_dir is given twice\n"
            "    vestra_init -vestra_dir a -vestra_dir b\n"
            "                              ^~~~~~~~~~~\n");
}

TEST(Protocol, TerminateTakesNothing) {
  EXPECT_EQ(errorOf(INIT + TRANSMIT + "vestra_terminate now\n"),
            "s.tcl:3: vestra_terminate: unexpected word \"now\"; it takes none\n"
            "    vestra_terminate now\n"
            "                     ^~~\n");
}

TEST(Protocol, OptionsMayStandInAnyOrder) {
  EXPECT_EQ(errorOf(scriptAround("vestra_add_data -context c -value v -key k -client kelvo\n")), "no error");
}

TEST(Protocol, AProjectDirectoryWithBlanksIsExplained) {
  EXPECT_EQ(errorOf("vestra_init -vestra_dir /home/u/my project/vestra/\n"),
            "s.tcl:1: vestra_init: unexpected word \"project/vestra/\"; a path with blanks reaches the "
            "script unquoted\n"
            "    vestra_init -vestra_dir /home/u/my project/vestra/\n"
            "                                       ^~~~~~~~~~~~~~~\n");
}

TEST(Protocol, AKeyWithWhiteSpaceIsExplained) {
  EXPECT_EQ(errorOf(scriptAround(addData("kelvo", "two words", "v", "c"))),
            "s.tcl:3: vestra_add_data: unexpected word \"words\"; a key with white space reaches the script "
            "unquoted\n"
            "    vestra_add_data -client kelvo -key two words -value \"v\" -context \"c\"\n"
            "                                           ^~~~~\n");
}

TEST(Protocol, AnEmptyKeyIsExplained) {
  EXPECT_EQ(errorOf(scriptAround(addData("kelvo", "", "v", "c"))),
            "s.tcl:3: vestra_add_data: unexpected word \"v\"; -key took \"-value\" for its value\n"
            "    vestra_add_data -client kelvo -key  -value \"v\" -context \"c\"\n"
            "                                               ^~~\n");
}

TEST(Protocol, AKeyMayBeCalledLikeAnOption) {
  EXPECT_EQ(errorOf(scriptAround(addData("kelvo", "-value", "v", "c"))), "no error");
}

TEST(Protocol, TheClientIdIsADecimalNumberOf32Bits) {
  EXPECT_EQ(errorOf(transmitWith("0")), "no error");
  EXPECT_EQ(errorOf(transmitWith("4294967295")), "no error");
  EXPECT_EQ(errorOf(transmitWith("12a")),
            "s.tcl:2: vestra_transmit: -clientid \"12a\" is no decimal number from 0 to 4294967295\n"
            "    vestra_transmit -clientid 12a -regid R -xml x -html h -wdm w -intro I\n"
            "                              ^~~\n");
  for (const std::string wrong :
       {"4294967296", "-1", "+1", "007", "1x", "0x10", "1.0", "99999999999999999999"}) {
    EXPECT_EQ(errorOf(transmitWith(wrong)),
              "s.tcl:2: vestra_transmit: -clientid \"" + wrong +
                  "\" is no decimal number from 0 to 4294967295\n    vestra_transmit -clientid " + wrong +
                  " -regid R -xml x -html h -wdm w -intro I\n" + std::string(30, ' ') + "^" +
                  std::string(wrong.size() - 1, '~') + "\n");
  }
  EXPECT_EQ(errorOf(transmitWith("{}")),
            "s.tcl:2: vestra_transmit: -clientid \"\" is no decimal number from 0 to 4294967295\n"
            "    vestra_transmit -clientid {} -regid R -xml x -html h -wdm w -intro I\n"
            "                              ^~\n");
}

TEST(Protocol, EachFileOfATransmissionHasItsOwnPath) {
  EXPECT_EQ(errorOf(INIT + "vestra_transmit -clientid 1 -regid R -xml a -html b -wdm a -intro I\n"),
            "s.tcl:2: vestra_transmit: -xml and -wdm name the same file\n"
            "    vestra_transmit -clientid 1 -regid R -xml a -html b -wdm a -intro I\n"
            "                                                             ^\n");
}

}  // namespace
}  // namespace vestra::design_tool
