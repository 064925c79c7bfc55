include(CMakePackageConfigHelpers)

# The components runtime, development and testkit; inspect/CMakeLists.txt has the component
# inspect.
set(vestra_package_dir "${CMAKE_INSTALL_LIBDIR}/cmake/vestra")

install(TARGETS vestra EXPORT vestra-targets
  LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}"
    COMPONENT runtime NAMELINK_COMPONENT development)
install(DIRECTORY "${PROJECT_SOURCE_DIR}/include/vestra"
  DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}" COMPONENT development)
install(EXPORT vestra-targets NAMESPACE vestra::
  DESTINATION "${vestra_package_dir}" COMPONENT development)

write_basic_package_version_file("${PROJECT_BINARY_DIR}/vestra-config-version.cmake"
  COMPATIBILITY SameMajorVersion)
install(FILES
    "${CMAKE_CURRENT_LIST_DIR}/vestra-config.cmake"
    "${PROJECT_BINARY_DIR}/vestra-config-version.cmake"
  DESTINATION "${vestra_package_dir}" COMPONENT development)

# vestra.pc names its directories relative to itself, so the installation may be moved.
file(RELATIVE_PATH vestra_prefix_from_pc
  "/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/")
string(REGEX REPLACE "/$" "" vestra_prefix_from_pc "${vestra_prefix_from_pc}")
configure_file("${CMAKE_CURRENT_LIST_DIR}/vestra.pc.in" "${PROJECT_BINARY_DIR}/vestra.pc" @ONLY)
install(FILES "${PROJECT_BINARY_DIR}/vestra.pc"
  DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig" COMPONENT development)

if(VESTRA_BUILD_TESTKIT)
  install(TARGETS vestra_testkit EXPORT vestra-testkit-targets
    LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT testkit)
  install(TARGETS vestra_testkit_support vestra_testkit_preload
    LIBRARY DESTINATION "${VESTRA_TESTKIT_LIBDIR}" COMPONENT testkit)
  install(TARGETS vestra-design-tool EXPORT vestra-testkit-targets
    RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}" COMPONENT testkit)
  install(DIRECTORY "${PROJECT_SOURCE_DIR}/testkit/include/vestra"
    DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}" COMPONENT testkit)
  install(EXPORT vestra-testkit-targets NAMESPACE vestra::
    DESTINATION "${vestra_package_dir}" COMPONENT testkit)
  install(FILES "${PROJECT_BINARY_DIR}/kit/${CMAKE_INSTALL_DATADIR}/doc/vestra/privacy.html"
    DESTINATION "${CMAKE_INSTALL_DATADIR}/doc/vestra" COMPONENT testkit)
  install(FILES "${PROJECT_SOURCE_DIR}/man/vestra-design-tool.1"
    DESTINATION "${CMAKE_INSTALL_MANDIR}/man1" COMPONENT testkit)
  configure_file("${CMAKE_CURRENT_LIST_DIR}/vestra-testkit.pc.in" "${PROJECT_BINARY_DIR}/vestra-testkit.pc" @ONLY)
  install(FILES "${PROJECT_BINARY_DIR}/vestra-testkit.pc"
    DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig" COMPONENT testkit)
endif()
