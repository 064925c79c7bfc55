include(CMakePackageConfigHelpers)

install(TARGETS vestra EXPORT vestra-targets
  LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}"
    COMPONENT runtime NAMELINK_COMPONENT development)
install(DIRECTORY "${PROJECT_SOURCE_DIR}/include/vestra"
  DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}" COMPONENT development)
