target_sources(vkSvgObjects PRIVATE
  ${CMAKE_CURRENT_LIST_DIR}/Dash.cpp
  ${CMAKE_CURRENT_LIST_DIR}/Flatten.cpp
  ${CMAKE_CURRENT_LIST_DIR}/MonotoneTriangulation.cpp
  ${CMAKE_CURRENT_LIST_DIR}/Stroke.cpp
  ${CMAKE_CURRENT_LIST_DIR}/TessellateFill.cpp)

# Clipper unites the contours under the fill rule. It stays private to the
# library; the libraries made from the objects are defined after this file is
# read, so their links wait until the end of the directory.
find_package(PkgConfig REQUIRED)
pkg_check_modules(POLYCLIPPING REQUIRED IMPORTED_TARGET polyclipping)
target_link_libraries(vkSvgObjects PRIVATE PkgConfig::POLYCLIPPING)
cmake_language(DEFER CALL target_link_libraries vkSvg PRIVATE PkgConfig::POLYCLIPPING)
cmake_language(DEFER CALL target_link_libraries vkSvgInternal PRIVATE PkgConfig::POLYCLIPPING)
