# Sets `vestra_boost` to the Boost target that the library links.
#
# Boost's symbols have no versions: of two Boosts in one process, the one that is loaded first
# serves both. A host with another Boost than the library's crashes then, unless the library
# has a private, hidden Boost.Filesystem.
option(VESTRA_PRIVATE_BOOST
  "Link a hidden Boost.Filesystem into the library, so that a host may have any Boost" OFF)
set(VESTRA_BOOST_SOURCES "" CACHE PATH
  "Boost's sources, from which a private Boost is compiled; if empty, Boost's static library is linked")

# A Boost without a CMake package is found by CMake's module FindBoost, which newer CMakes keep
# for old policies only (CMP0167). Boost_NO_BOOST_CMAKE skips packages, which may be another
# Boost's.
macro(vestra_find_boost)
  if(NOT Boost_NO_BOOST_CMAKE)
    find_package(Boost 1.64 CONFIG QUIET COMPONENTS filesystem)
  endif()
  if(NOT TARGET Boost::filesystem)
    if(POLICY CMP0167)
      cmake_policy(SET CMP0167 OLD)
    endif()
    find_package(Boost 1.64 REQUIRED COMPONENTS filesystem)
  endif()
endmacro()

# Debian's static library, for example, was compiled without -fPIC.
function(vestra_check_that_shared_libraries_can_hold_boost)
  try_compile(VESTRA_STATIC_BOOST_IS_USABLE "${CMAKE_CURRENT_BINARY_DIR}/static_boost"
    "${PROJECT_SOURCE_DIR}/cmake/static_boost.cpp"
    COMPILE_DEFINITIONS -fPIC
    LINK_OPTIONS -shared
    LINK_LIBRARIES Boost::filesystem
    OUTPUT_VARIABLE why)
  if(NOT VESTRA_STATIC_BOOST_IS_USABLE)
    message(FATAL_ERROR "VESTRA_PRIVATE_BOOST: Boost's static library cannot be linked into a shared library. "
      "Give one that was built with -fPIC (Boost_ROOT names its place, with Boost_NO_BOOST_CMAKE where it has no "
      "CMake package), or name Boost's sources as VESTRA_BOOST_SOURCES. The linker said:\n${why}")
  endif()
endfunction()

# The sources are a release of Boost, with all headers in one folder, or Boost's source tree, with
# a folder for each library.
function(vestra_compile_boost sources)
  file(GLOB files CONFIGURE_DEPENDS "${sources}/libs/filesystem/src/*.cpp" "${sources}/libs/system/src/*.cpp")
  if(EXISTS "${sources}/boost/version.hpp")
    set(includes "${sources}")
  else()
    file(GLOB includes "${sources}/libs/*/include" "${sources}/libs/numeric/*/include")
  endif()
  if(NOT files OR NOT includes)
    message(FATAL_ERROR "VESTRA_BOOST_SOURCES: ${sources} holds no libs/filesystem/src, or no headers beside it")
  endif()
  add_library(vestra_private_boost STATIC EXCLUDE_FROM_ALL ${files})
  target_include_directories(vestra_private_boost SYSTEM PUBLIC ${includes})
  target_compile_definitions(vestra_private_boost
    PUBLIC BOOST_ALL_NO_LIB
    PRIVATE BOOST_FILESYSTEM_SOURCE BOOST_FILESYSTEM_STATIC_LINK BOOST_SYSTEM_STATIC_LINK)
  # Warnings of Boost's own sources are not ours to fix.
  target_compile_options(vestra_private_boost PRIVATE -w)
  set_target_properties(vestra_private_boost PROPERTIES
    POSITION_INDEPENDENT_CODE ON
    CXX_VISIBILITY_PRESET hidden
    VISIBILITY_INLINES_HIDDEN ON)
endfunction()

if(VESTRA_BOOST_SOURCES)
  vestra_compile_boost("${VESTRA_BOOST_SOURCES}")
endif()
if(NOT VESTRA_PRIVATE_BOOST)
  vestra_find_boost()
  set(vestra_boost Boost::filesystem)
  message(STATUS "Vestra shares the system's Boost.Filesystem: a host with another Boost crashes. "
    "VESTRA_PRIVATE_BOOST prevents that")
elseif(VESTRA_BOOST_SOURCES)
  set(vestra_boost vestra_private_boost)
else()
  set(Boost_USE_STATIC_LIBS ON)
  vestra_find_boost()
  vestra_check_that_shared_libraries_can_hold_boost()
  set(vestra_boost Boost::filesystem)
endif()
