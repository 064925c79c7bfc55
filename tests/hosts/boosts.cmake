# Hosts with Boosts of their own, each linked in either order and with the library opened
# at run time. Only a library that keeps its Boost apart can stand all of them.

set(VESTRA_OTHER_BOOST "" CACHE PATH
  "Another version of Boost for the tests' hosts, unpacked by scripts/fetch-boost; without it, its tests are skipped")

# Libraries are linked as they are listed, all of them.
function(add_host target definitions)
  add_executable(${target} host.cpp)
  target_include_directories(${target} PRIVATE "${PROJECT_SOURCE_DIR}/include")
  target_compile_definitions(${target} PRIVATE ${boost_definitions} ${definitions})
  target_include_directories(${target} SYSTEM PRIVATE ${boost_includes})
  target_link_options(${target} PRIVATE LINKER:--no-as-needed)
  target_link_libraries(${target} PRIVATE ${ARGN} ${CMAKE_DL_LIBS})
  set_target_properties(${target} PROPERTIES BUILD_RPATH "${boost_directory}")
endfunction()

function(add_hosts name)
  add_host(host_${name}_before "" ${boost_libraries} vestra)
  add_report_test(Boost${name}LinkedBeforeTheLibrary "$<TARGET_FILE:host_${name}_before>")
  add_host(host_${name}_behind "" vestra ${boost_libraries})
  add_report_test(Boost${name}LinkedBehindTheLibrary "$<TARGET_FILE:host_${name}_behind>")
  add_host(host_${name}_opening OPENS_THE_LIBRARY ${boost_libraries})
  add_report_test(Boost${name}OpeningTheLibraryForItself "$<TARGET_FILE:host_${name}_opening>" "$<TARGET_FILE:vestra>" local)
  add_report_test(Boost${name}OpeningTheLibraryForAll "$<TARGET_FILE:host_${name}_opening>" "$<TARGET_FILE:vestra>" global)
endfunction()

# The system's, which is the version of the private one: exceptions keep their type.
get_target_property(boost_library Boost::filesystem LOCATION)
get_filename_component(system_boost_directory "${boost_library}" DIRECTORY)
set(boost_directory "${system_boost_directory}")
set(boost_includes "")
set(boost_definitions CATCHES_BY_TYPE)
set(boost_libraries "${boost_directory}/libboost_filesystem.so")
add_hosts(1.74Shared)
set(boost_libraries "${boost_directory}/libboost_filesystem.a")
add_hosts(1.74Static)

file(GLOB other "${VESTRA_OTHER_BOOST}/usr/lib/*/libboost_filesystem.a")
if(VESTRA_OTHER_BOOST AND other)
  get_filename_component(boost_directory "${other}" DIRECTORY)
  set(boost_includes "${VESTRA_OTHER_BOOST}/usr/include")
  set(boost_definitions "")
  set(boost_libraries "${boost_directory}/libboost_filesystem.so" "${boost_directory}/libboost_atomic.so")
  add_hosts(1.81Shared)
  set(boost_libraries "${boost_directory}/libboost_filesystem.a" "${boost_directory}/libboost_atomic.a")
  add_hosts(1.81Static)
else()
  add_skipped_test(OtherBoosts "VESTRA_OTHER_BOOST names no other Boost; scripts/fetch-boost fetches one")
endif()

add_test(NAME Hosts.OldStringsHaveTheSameInterface
  COMMAND "${CMAKE_CURRENT_SOURCE_DIR}/check-old-strings"
    "${CMAKE_COMMAND}" "${CMAKE_CXX_COMPILER}" "${PROJECT_SOURCE_DIR}" "${VESTRA_BOOST_SOURCES}"
    "${PROJECT_SOURCE_DIR}/debian/libvestra1.symbols" "${CMAKE_CURRENT_BINARY_DIR}")
add_test(NAME Hosts.StaticBoostIsTriedBeforeItIsTaken
  COMMAND "${CMAKE_CURRENT_SOURCE_DIR}/check-static-boost"
    "${CMAKE_COMMAND}" "${CMAKE_CXX_COMPILER}" "${PROJECT_SOURCE_DIR}" "${system_boost_directory}"
    "${CMAKE_CURRENT_BINARY_DIR}")
if(VESTRA_BOOST_SOURCES)
  add_test(NAME Hosts.StaticBoostIsHeldAndHidden
    COMMAND "${CMAKE_CURRENT_SOURCE_DIR}/use-static-boost"
      "${CMAKE_COMMAND}" "${CMAKE_CXX_COMPILER}" "${PROJECT_SOURCE_DIR}" "${VESTRA_BOOST_SOURCES}"
      "${PROJECT_SOURCE_DIR}/debian/libvestra1.symbols" "${CMAKE_CURRENT_BINARY_DIR}")
endif()
