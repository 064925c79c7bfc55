# find_package(vestra CONFIG)                     vestra::vestra, the library
# find_package(vestra CONFIG COMPONENTS testkit)  and vestra::testkit, what a host's
#                                                 tests link
foreach(vestra_component IN LISTS vestra_FIND_COMPONENTS)
  if(EXISTS "${CMAKE_CURRENT_LIST_DIR}/vestra-${vestra_component}-targets.cmake")
    set(vestra_${vestra_component}_FOUND TRUE)
  elseif(vestra_FIND_REQUIRED_${vestra_component})
    set(vestra_FOUND FALSE)
    set(vestra_NOT_FOUND_MESSAGE
      "Vestra's component \"${vestra_component}\" is unknown or not installed.")
    return()
  endif()
endforeach()

include("${CMAKE_CURRENT_LIST_DIR}/vestra-targets.cmake")
foreach(vestra_component IN LISTS vestra_FIND_COMPONENTS)
  include("${CMAKE_CURRENT_LIST_DIR}/vestra-${vestra_component}-targets.cmake" OPTIONAL)
endforeach()
