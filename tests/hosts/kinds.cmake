# Hosts that were not built as the library was: plugins, scripts, other runtimes and
# allocators, sanitizers.

add_library(c_shim MODULE c_shim.cpp)
target_link_libraries(c_shim PRIVATE vestra)
add_executable(plugin_host plugin_host.c)
target_link_libraries(plugin_host PRIVATE ${CMAKE_DL_LIBS})
add_report_test(PluginReportsOpenedTwice
  "$<TARGET_FILE:plugin_host>" "$<TARGET_FILE:c_shim>" "$<TARGET_FILE:vestra>")

find_package(Python3 COMPONENTS Interpreter Development QUIET)
find_package(pybind11 CONFIG QUIET)
if(Python3_FOUND AND pybind11_FOUND)
  add_report_test(PythonReportsThroughTheShim
    "${CMAKE_CURRENT_SOURCE_DIR}/ctypes_host.py" "$<TARGET_FILE:c_shim>")
  add_library(vestra_module MODULE pybind_module.cpp)
  target_compile_options(vestra_module PRIVATE -w)
  target_link_libraries(vestra_module PRIVATE pybind11::headers Python3::Module vestra)
  set_target_properties(vestra_module PROPERTIES PREFIX "")
  add_report_test(PythonReportsThroughPybind
    "${CMAKE_CURRENT_SOURCE_DIR}/pybind_host.py" "$<TARGET_FILE_DIR:vestra_module>")
else()
  add_skipped_test(PythonReports "Python's headers or pybind11's are missing")
endif()

# A C host, whose shim catches an exception, with these options of compiler and linker.
function(add_c_host name)
  add_executable(${name} c_host.c c_shim.cpp)
  target_compile_options(${name} PRIVATE ${ARGN})
  target_link_options(${name} PRIVATE ${ARGN})
  target_link_libraries(${name} PRIVATE vestra)
endfunction()

add_c_host(host_of_static_library -static-libstdc++)
add_report_test(StaticStandardLibraryReports "$<TARGET_FILE:host_of_static_library>")
add_c_host(host_of_static_unwinder -static-libgcc)
add_report_test(StaticUnwinderReports "$<TARGET_FILE:host_of_static_unwinder>")
# An exception that passes a frame with something to clean up ends the process: with both,
# there are two unwinders in it. 134 is what a shell makes of SIGABRT.
add_c_host(host_of_static_runtime -static-libstdc++ -static-libgcc)
add_report_test(BothRuntimesStaticAbortAtAnException "$<TARGET_FILE:host_of_static_runtime>")
set_tests_properties(Hosts.BothRuntimesStaticAbortAtAnException PROPERTIES ENVIRONMENT HOST_ENDS_WITH=134)

add_c_host(host_with_address_sanitizer -fsanitize=address,undefined -fno-sanitize-recover=all)
add_report_test(HostUnderAddressSanitizerReports "$<TARGET_FILE:host_with_address_sanitizer>")
add_c_host(host_with_thread_sanitizer -fsanitize=thread)
add_report_test(HostUnderThreadSanitizerReports "$<TARGET_FILE:host_with_thread_sanitizer>")

find_library(VESTRA_JEMALLOC NAMES libjemalloc.so.2)
if(VESTRA_JEMALLOC)
  add_report_test(HostWithJemallocReports "$<TARGET_FILE:c_host>")
  set_tests_properties(Hosts.HostWithJemallocReports PROPERTIES ENVIRONMENT "LD_PRELOAD=${VESTRA_JEMALLOC}")
else()
  add_skipped_test(HostWithJemallocReports "libjemalloc2 is not installed")
endif()
