# SVG reading: the SAX-driven loader, its attribute readers and the text
# whitespace rules.
target_sources(vkSvgObjects PRIVATE
  ${CMAKE_CURRENT_LIST_DIR}/ElementReaders.cpp
  ${CMAKE_CURRENT_LIST_DIR}/Loader.cpp
  ${CMAKE_CURRENT_LIST_DIR}/PresentationReader.cpp
  ${CMAKE_CURRENT_LIST_DIR}/TextSpace.cpp)
# The path reader turns utfcpp's exceptions into messages.
target_link_libraries(vkSvgObjects PRIVATE utf8cpp)
