target_sources(vkSvgObjects PRIVATE
  ${CMAKE_CURRENT_LIST_DIR}/BoundingVolumes.cpp
  ${CMAKE_CURRENT_LIST_DIR}/ComputeEstimatedBoundingBox.cpp
  ${CMAKE_CURRENT_LIST_DIR}/OptionSegmenters.cpp
  ${CMAKE_CURRENT_LIST_DIR}/PathBoundingVolume.cpp
  ${CMAKE_CURRENT_LIST_DIR}/ArcSegmentation.cpp
  ${CMAKE_CURRENT_LIST_DIR}/BezierSegmentation.cpp
  ${CMAKE_CURRENT_LIST_DIR}/SegmentationLimits.cpp
  ${CMAKE_CURRENT_LIST_DIR}/SegmentedPrimitive.cpp
  ${CMAKE_CURRENT_LIST_DIR}/SegmenterVisitor.cpp
  ${CMAKE_CURRENT_LIST_DIR}/StrokeMesh.cpp
  ${CMAKE_CURRENT_LIST_DIR}/ShapeSegmenters.cpp)
