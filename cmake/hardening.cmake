# Hardens what is shipped: every target of the folders that were added before, so that a new
# one cannot be forgotten.

include(CheckCXXCompilerFlag)
include(CheckCXXSourceCompiles)
include(CheckPIESupported)

check_pie_supported()
check_cxx_compiler_flag(-fstack-protector-strong VESTRA_HAS_STACK_PROTECTOR)
check_cxx_compiler_flag(-fcf-protection VESTRA_HAS_CONTROL_FLOW_PROTECTION)

# _FORTIFY_SOURCE needs optimisation. A level that the compiler or a distribution's flags set is
# kept. A C library without level 3 warns about it.
function(vestra_check_fortify variable definition condition)
  set(CMAKE_REQUIRED_FLAGS "-O2 -Werror")
  set(CMAKE_REQUIRED_DEFINITIONS ${definition})
  check_cxx_source_compiles("
    #include <string.h>
    #if !(${condition})
    #error
    #endif
    int main() { return 0; }" ${variable})
endfunction()
vestra_check_fortify(VESTRA_CAN_CHOOSE_FORTIFY_LEVEL "" "!defined _FORTIFY_SOURCE")
vestra_check_fortify(VESTRA_HAS_FORTIFY_LEVEL_3 -D_FORTIFY_SOURCE=3 "1")

set(hardening_options
  "$<$<BOOL:${VESTRA_HAS_STACK_PROTECTOR}>:-fstack-protector-strong>"
  "$<$<BOOL:${VESTRA_HAS_CONTROL_FLOW_PROTECTION}>:-fcf-protection>")
if(VESTRA_CAN_CHOOSE_FORTIFY_LEVEL)
  set(optimised "$<OR:$<CONFIG:Release>,$<CONFIG:RelWithDebInfo>,$<CONFIG:MinSizeRel>>")
  set(level "$<IF:$<BOOL:${VESTRA_HAS_FORTIFY_LEVEL_3}>,3,2>")
  list(APPEND hardening_options "$<${optimised}:-D_FORTIFY_SOURCE=${level}>")
endif()

function(vestra_harden_target target)
  get_target_property(type ${target} TYPE)
  if(type STREQUAL "UTILITY" OR type STREQUAL "INTERFACE_LIBRARY")
    return()
  endif()
  target_compile_options(${target} PRIVATE ${hardening_options})
  set_target_properties(${target} PROPERTIES POSITION_INDEPENDENT_CODE ON)
  if(NOT type MATCHES "STATIC_LIBRARY|OBJECT_LIBRARY")
    target_link_options(${target} PRIVATE LINKER:-z,relro LINKER:-z,now)
    set_property(GLOBAL APPEND_STRING PROPERTY VESTRA_SHIPPED_FILES "$<TARGET_FILE:${target}>\n")
  endif()
endfunction()

function(vestra_harden_folder folder)
  get_property(targets DIRECTORY "${folder}" PROPERTY BUILDSYSTEM_TARGETS)
  foreach(target IN LISTS targets)
    vestra_harden_target(${target})
  endforeach()
  get_property(folders DIRECTORY "${folder}" PROPERTY SUBDIRECTORIES)
  foreach(each IN LISTS folders)
    vestra_harden_folder("${each}")
  endforeach()
endfunction()

vestra_harden_folder("${PROJECT_SOURCE_DIR}")

# The paths of the shipped files, one a line, for the test that checks them.
get_property(files GLOBAL PROPERTY VESTRA_SHIPPED_FILES)
file(GENERATE OUTPUT "${PROJECT_BINARY_DIR}/shipped_files" CONTENT "${files}")
