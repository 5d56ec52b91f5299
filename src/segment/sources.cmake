target_sources(vkSvgObjects PRIVATE
  ${CMAKE_CURRENT_LIST_DIR}/BoundingVolumes.cpp
  ${CMAKE_CURRENT_LIST_DIR}/ComputeEstimatedBoundingBox.cpp
  ${CMAKE_CURRENT_LIST_DIR}/PathBoundingVolume.cpp)
