include(GoogleTest)

# How tests join:
#
#     add_test_program(NAME [PREFIX TEXT] [SOURCES FILE...])
#
# makes a GoogleTest program, of sources that a folder may add to later; what else it
# links is said as of any target. ctest runs each of its tests in a process of its own and
# knows it by its name, behind the prefix. scripts/checks/valgrind and scripts/checks/coverage
# list the programs that they run.
#
# No test has a limit of its own: the presets' ends what sleeps for ever.
function(add_test_program name)
  cmake_parse_arguments(PARSE_ARGV 1 program "" PREFIX SOURCES)
  add_executable(${name} ${program_SOURCES})
  target_link_libraries(${name} PRIVATE
    vestra_test_support GTest::gmock GTest::gmock_main Threads::Threads)
  target_precompile_headers(${name} REUSE_FROM vestra_test_headers)
  # CMake 3.31 warns of an option with an empty value.
  set(prefix)
  if(program_PREFIX)
    set(prefix TEST_PREFIX "${program_PREFIX}")
  endif()
  gtest_discover_tests(${name} ${prefix} DISCOVERY_TIMEOUT 900)
  set_property(GLOBAL APPEND_STRING PROPERTY VESTRA_TEST_PROGRAMS "$<TARGET_FILE:${name}>\n")
endfunction()

# Where the programs lie, for scripts: one a line.
function(write_test_programs file)
  get_property(programs GLOBAL PROPERTY VESTRA_TEST_PROGRAMS)
  file(GENERATE OUTPUT "${file}" CONTENT "${programs}")
endfunction()

# What most tests include, compiled once for all programs.
file(CONFIGURE OUTPUT "${CMAKE_CURRENT_BINARY_DIR}/test_headers.cpp" CONTENT "")
add_library(vestra_test_headers OBJECT "${CMAKE_CURRENT_BINARY_DIR}/test_headers.cpp")
target_precompile_headers(vestra_test_headers PRIVATE
  <fstream> <optional> <sstream> <string> <vector> <gmock/gmock.h> <gtest/gtest.h> <boost/filesystem.hpp>)
target_link_libraries(vestra_test_headers PRIVATE vestra_test_support GTest::gmock Threads::Threads)
