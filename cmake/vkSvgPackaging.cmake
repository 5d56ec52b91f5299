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

# The pkg-config file finds the prefix from its own place (${pcfiledir}), so
# that an installed tree can be moved or installed with --prefix elsewhere
# than it was configured for. Absolute install directories stay absolute.
function(vksvg_pc_dir out dir)
  if(IS_ABSOLUTE "${dir}")
    set(${out} "${dir}" PARENT_SCOPE)
  else()
    set(${out} "\${prefix}/${dir}" PARENT_SCOPE)
  endif()
endfunction()
set(VKSVG_PC_PKGCONFIG_DIR "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
if(IS_ABSOLUTE "${VKSVG_PC_PKGCONFIG_DIR}")
  set(VKSVG_PC_PREFIX "${CMAKE_INSTALL_PREFIX}")
else()
  # One ".." for each folder between the prefix and the pkg-config folder.
  string(REGEX REPLACE "[^/]+" ".." VKSVG_PC_UP "${VKSVG_PC_PKGCONFIG_DIR}")
  set(VKSVG_PC_PREFIX "\${pcfiledir}/${VKSVG_PC_UP}")
endif()
vksvg_pc_dir(VKSVG_PC_LIBDIR "${CMAKE_INSTALL_LIBDIR}")
vksvg_pc_dir(VKSVG_PC_INCLUDEDIR "${CMAKE_INSTALL_INCLUDEDIR}")

configure_file("${PROJECT_SOURCE_DIR}/cmake/vkSvg.pc.in" "${PROJECT_BINARY_DIR}/vkSvg.pc" @ONLY)
install(FILES "${PROJECT_BINARY_DIR}/vkSvg.pc" DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
