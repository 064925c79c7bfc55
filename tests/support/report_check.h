#ifndef VESTRA_TESTS_SUPPORT_REPORT_CHECK_H
#define VESTRA_TESTS_SUPPORT_REPORT_CHECK_H

#include <cstdint>
#include <ctime>
#include <string>

namespace vestra_test {

/// The CRC-32 of bytes, NUL included, by an implementation that is not ours.
std::uint32_t zlibCrc32(const std::string& bytes);

/// How often each host of a farm adds the item by which its reports are known.
inline constexpr int MARKS_OF_A_HOST = 60;
/// That item's key. Its value is the host's number.
inline constexpr const char* MARK = "host";

/// What is wrong with a report script as the design tool finds it: "empty"; "torn" when
/// lines are cut, lacking or repeated; "mixed" when it has items of several hosts;
/// "checksum" when that is another than its items'. Nothing is wrong: the empty text.
///
/// @param script  Its bytes.
/// @param now     The time, since the checksum has the hour in it; that of an hour ago is
///                right as well.
std::string faultOf(const std::string& script, std::time_t now);

/// Whether the checksum is that of the script's items and of this hour or the last one.
bool isChecksumRight(const std::string& script, std::time_t now);

/// The value of the script's first item with a key; empty without one.
std::string valueOf(const std::string& script, const std::string& key);

}  // namespace vestra_test

#endif
