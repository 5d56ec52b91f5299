# Path data: the scanner, the command list and the absolute primitives.
# utfcpp (found once at the top level) steps through the text.
target_sources(vkSvgObjects PRIVATE
  ${CMAKE_CURRENT_LIST_DIR}/PathCommand.cpp
  ${CMAKE_CURRENT_LIST_DIR}/PathData.cpp
  ${CMAKE_CURRENT_LIST_DIR}/PathPrimitives.cpp
  ${CMAKE_CURRENT_LIST_DIR}/PathBuilder.cpp)
target_link_libraries(vkSvgObjects PRIVATE utf8cpp)
