# The unit tests drive the inner classes, so they link the library's objects. They
# bring a clock, a domain name, a shell, and calls of files of their own, which tests set.
add_test_program(unit_tests SOURCES support/interposed/c_library.cpp support/interposed/file_calls.cpp)
# Their parameters have other names than those of the C library's headers.
set_source_files_properties(support/interposed/c_library.cpp support/interposed/file_calls.cpp
  PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)

# The operator new that fails, and the very first use in a process, each need a
# program of their own.
add_test_program(out_of_memory_tests)
add_test_program(first_use_tests)
add_test_program(first_use_thread_tests)

add_subdirectory(data)
add_subdirectory(files)
add_subdirectory(handler)
add_subdirectory(identity)
add_subdirectory(interface)

target_link_libraries(unit_tests PRIVATE rapidcheck rapidcheck_gtest)

foreach(tests unit_tests out_of_memory_tests first_use_tests first_use_thread_tests)
  target_link_libraries(${tests} PRIVATE vestra_objects)
endforeach()
target_link_libraries(unit_tests PRIVATE vestra_stand_in_library)
target_link_libraries(out_of_memory_tests PRIVATE vestra_stand_in_library)

# ctest runs each test in a process of its own; they must not mind sharing one.
add_test(NAME unit_tests.in_one_process COMMAND unit_tests --gtest_shuffle --gtest_brief)
