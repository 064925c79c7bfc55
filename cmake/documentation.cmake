# The target `docs`: the reference of the public headers, with the documents, as HTML in
# docs/html of the build folder. Requires Doxygen. Not part of the ordinary build.
find_package(Doxygen 1.9.4)
if(DOXYGEN_FOUND)
  set(VESTRA_REFERENCE_DIR "${PROJECT_BINARY_DIR}/docs")
  configure_file("${PROJECT_SOURCE_DIR}/docs/Doxyfile.in" "${VESTRA_REFERENCE_DIR}/Doxyfile" @ONLY)
  add_custom_target(docs
    COMMAND Doxygen::doxygen "${VESTRA_REFERENCE_DIR}/Doxyfile"
    COMMENT "Writing the reference to ${VESTRA_REFERENCE_DIR}/html"
    VERBATIM)
endif()
