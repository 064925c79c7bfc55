# A library says where its headers lie and which C++ it needs, and nothing else:
# warnings, definitions and linker options are the host's own.
function(check_nothing_imposed target)
  get_target_property(aliased ${target} ALIASED_TARGET)
  if(aliased)
    set(target ${aliased})
  endif()
  foreach(property COMPILE_OPTIONS COMPILE_DEFINITIONS LINK_OPTIONS LINK_LIBRARIES)
    get_target_property(imposed ${target} INTERFACE_${property})
    if(imposed)
      message(FATAL_ERROR "${target} imposes ${property} on its users: ${imposed}")
    endif()
  endforeach()
endfunction()
