# Install rules for the CMake package (vkSvg::vkSvg) and the pkg-config file.
include(CMakePackageConfigHelpers)

set(VKSVG_CMAKE_DIR "${CMAKE_INSTALL_LIBDIR}/cmake/vkSvg")

install(EXPORT vkSvgTargets NAMESPACE vkSvg:: DESTINATION "${VKSVG_CMAKE_DIR}")

configure_package_config_file(
  "${PROJECT_SOURCE_DIR}/cmake/vkSvgConfig.cmake.in"
  "${PROJECT_BINARY_DIR}/vkSvgConfig.cmake"
  INSTALL_DESTINATION "${VKSVG_CMAKE_DIR}")
write_basic_package_version_file(
  "${PROJECT_BINARY_DIR}/vkSvgConfigVersion.cmake"
  VERSION ${PROJECT_VERSION}
  COMPATIBILITY SameMinorVersion)
install(FILES
  "${PROJECT_BINARY_DIR}/vkSvgConfig.cmake"
  "${PROJECT_BINARY_DIR}/vkSvgConfigVersion.cmake"
  "${PROJECT_SOURCE_DIR}/cmake/FindWildMagic5.cmake"
  DESTINATION "${VKSVG_CMAKE_DIR}")

configure_file("${PROJECT_SOURCE_DIR}/cmake/vkSvg.pc.in" "${PROJECT_BINARY_DIR}/vkSvg.pc" @ONLY)
install(FILES "${PROJECT_BINARY_DIR}/vkSvg.pc" DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
