# Finds Debian's Wild Magic 5 (libwildmagic-dev), which ships neither a CMake
# package nor a pkg-config file. Defines WildMagic5::Core and
# WildMagic5::Mathematics.

find_path(WildMagic5_INCLUDE_DIR Wm5Vector2.h PATH_SUFFIXES libwildmagic)
find_library(WildMagic5_Core_LIBRARY Wm5Core)
find_library(WildMagic5_Mathematics_LIBRARY Wm5Mathematics)

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(WildMagic5
  REQUIRED_VARS WildMagic5_INCLUDE_DIR WildMagic5_Core_LIBRARY WildMagic5_Mathematics_LIBRARY)

if(WildMagic5_FOUND)
  if(NOT TARGET WildMagic5::Core)
    add_library(WildMagic5::Core UNKNOWN IMPORTED)
    set_target_properties(WildMagic5::Core PROPERTIES
      IMPORTED_LOCATION "${WildMagic5_Core_LIBRARY}"
      INTERFACE_SYSTEM_INCLUDE_DIRECTORIES "${WildMagic5_INCLUDE_DIR}"
      INTERFACE_INCLUDE_DIRECTORIES "${WildMagic5_INCLUDE_DIR}")
  endif()
  if(NOT TARGET WildMagic5::Mathematics)
    add_library(WildMagic5::Mathematics UNKNOWN IMPORTED)
    set_target_properties(WildMagic5::Mathematics PROPERTIES
      IMPORTED_LOCATION "${WildMagic5_Mathematics_LIBRARY}"
      INTERFACE_SYSTEM_INCLUDE_DIRECTORIES "${WildMagic5_INCLUDE_DIR}"
      INTERFACE_INCLUDE_DIRECTORIES "${WildMagic5_INCLUDE_DIR}"
      INTERFACE_LINK_LIBRARIES WildMagic5::Core)
  endif()
endif()

mark_as_advanced(WildMagic5_INCLUDE_DIR WildMagic5_Core_LIBRARY WildMagic5_Mathematics_LIBRARY)
