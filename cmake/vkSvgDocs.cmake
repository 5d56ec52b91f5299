# `docs`: the API reference from the public headers (doxygen), failing on any
# warning, so that every public name stays documented.
find_package(Doxygen QUIET)
if(DOXYGEN_FOUND)
  configure_file("${PROJECT_SOURCE_DIR}/docs/Doxyfile.in" "${PROJECT_BINARY_DIR}/Doxyfile" @ONLY)
  add_custom_target(docs
    COMMAND Doxygen::doxygen "${PROJECT_BINARY_DIR}/Doxyfile"
    WORKING_DIRECTORY "${PROJECT_SOURCE_DIR}"
    COMMENT "Generating the API reference in ${PROJECT_BINARY_DIR}/docs/html"
    VERBATIM)
else()
  add_custom_target(docs
    COMMAND "${CMAKE_COMMAND}" -E echo "doxygen is not installed: apt-get install doxygen"
    COMMAND "${CMAKE_COMMAND}" -E false
    VERBATIM)
endif()
