# Size and speed of the shared library. Included by src/CMakeLists.txt, which file
# names here are relative to.

include(CheckCXXCompilerFlag)
include(CheckCXXSourceCompiles)

# What is shipped is small: a host pays for the library at each start, and for most
# of its code at most once. What runs for each item and each byte is quick instead.
set(for_each_item
  data/byte_string.cpp
  data/crc32.cpp
  data/vestra_add_data.cpp
  handler/vestra_handler_items.cpp
  interface/vestra.cpp)
set(tuned vestra_objects)
if(TARGET vestra_private_boost)
  list(APPEND tuned vestra_private_boost)
endif()
foreach(target IN LISTS tuned)
  target_compile_options(${target} PRIVATE
    "$<$<CONFIG:Release>:-Os;-ffunction-sections;-fdata-sections>")
endforeach()
set_source_files_properties(${for_each_item} PROPERTIES COMPILE_OPTIONS "$<$<CONFIG:Release>:-O2>")
# No host puts a function of its own in the place of an exported one, so calls of
# these from within need no detour through the loader's table.
check_cxx_compiler_flag(-fno-semantic-interposition VESTRA_CALLS_CAN_BE_DIRECT)
if(VESTRA_CALLS_CAN_BE_DIRECT)
  target_compile_options(vestra_objects PRIVATE -fno-semantic-interposition)
endif()
# Clang's objects for this hold no machine code beside, so other linkers could not
# link them into the tests.
set(whole_program "$<AND:$<CXX_COMPILER_ID:GNU>,$<CONFIG:Release>>")
foreach(target IN LISTS tuned)
  target_compile_options(${target} PRIVATE "$<${whole_program}:-flto;-ffat-lto-objects>")
endforeach()

# Pages of the file are not filled up. Names are looked up while the host starts, which
# costs less there than one by one in the midst of its first report: hardening.cmake.
target_link_options(vestra PRIVATE
  LINKER:--gc-sections LINKER:-Bsymbolic-functions LINKER:-z,noseparate-code
  "$<${whole_program}:-flto;-Os>")

# A library that the library needs and is not linked to would be missed on some systems
# only. Clang's sanitizers are such a one by design: programs bring them.
set(CMAKE_TRY_COMPILE_CONFIGURATION "${CMAKE_BUILD_TYPE}")
set(CMAKE_REQUIRED_FLAGS "-fPIC")
set(CMAKE_REQUIRED_LINK_OPTIONS -shared LINKER:-z,defs)
check_cxx_source_compiles("int valueOf(const int* place) { return *place; }" VESTRA_CAN_LINK_COMPLETELY)
unset(CMAKE_TRY_COMPILE_CONFIGURATION)
unset(CMAKE_REQUIRED_FLAGS)
unset(CMAKE_REQUIRED_LINK_OPTIONS)
if(VESTRA_CAN_LINK_COMPLETELY)
  target_link_options(vestra PRIVATE LINKER:-z,defs)
endif()
