target_sources(vkSvgObjects PRIVATE
  ${CMAKE_CURRENT_LIST_DIR}/BoundingBox.cpp
  ${CMAKE_CURRENT_LIST_DIR}/Color.cpp
  ${CMAKE_CURRENT_LIST_DIR}/NamedColors.cpp
  ${CMAKE_CURRENT_LIST_DIR}/RenderingProperties.cpp
  ${CMAKE_CURRENT_LIST_DIR}/UnitValue.cpp)
target_sources(vkSvgObjects PRIVATE
  ${CMAKE_CURRENT_LIST_DIR}/ItemInterface.cpp
  ${CMAKE_CURRENT_LIST_DIR}/Node.cpp
  ${CMAKE_CURRENT_LIST_DIR}/ShapeItems.cpp)
