# Optimises the shared library. Included by src/CMakeLists.txt; file names are relative to src/.

include(CheckCXXCompilerFlag)
include(CheckCXXSourceCompiles)

# The library is optimised for size, because each start of a host loads it and most of its code
# runs at most once. What runs for each item or byte is optimised for speed.
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
# Nobody interposes our exports, so internal calls may bypass the PLT.
check_cxx_compiler_flag(-fno-semantic-interposition VESTRA_CALLS_CAN_BE_DIRECT)
if(VESTRA_CALLS_CAN_BE_DIRECT)
  target_compile_options(vestra_objects PRIVATE -fno-semantic-interposition)
endif()
# GCC only: clang's objects hold bitcode alone, which the tests' build by GCC could not link.
set(whole_program "$<AND:$<CXX_COMPILER_ID:GNU>,$<CONFIG:Release>>")
foreach(target IN LISTS tuned)
  target_compile_options(${target} PRIVATE "$<${whole_program}:-flto;-ffat-lto-objects>")
endforeach()

# noseparate-code: no padding between segments. Symbols are bound at load time, see
# hardening.cmake, which costs less than binding them one by one in the first report.
target_link_options(vestra PRIVATE
  LINKER:--gc-sections LINKER:-Bsymbolic-functions LINKER:-z,noseparate-code
  "$<${whole_program}:-flto;-Os>")

# -z defs: a library that is not linked would be missed on some systems only. Clang's sanitizers
# leave their symbols undefined by design, because programs bring them.
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
