set(vksvg_triangulate_sources
  ${CMAKE_CURRENT_LIST_DIR}/CleanupContour.cpp
  ${CMAKE_CURRENT_LIST_DIR}/TrapezoidRepresentation.cpp
  ${CMAKE_CURRENT_LIST_DIR}/TriangulatePoly.cpp)
target_sources(vkSvgObjects PRIVATE ${vksvg_triangulate_sources})
# The single-precision results are part of the contract: they must not change
# with a target that can fuse a multiply and an add.
set_source_files_properties(${vksvg_triangulate_sources} PROPERTIES COMPILE_OPTIONS -ffp-contract=off)
