target_sources(vkSvgObjects PRIVATE
  ${CMAKE_CURRENT_LIST_DIR}/ElementWriters.cpp
  ${CMAKE_CURRENT_LIST_DIR}/ItemWriter.cpp
  ${CMAKE_CURRENT_LIST_DIR}/PathDataWriter.cpp
  ${CMAKE_CURRENT_LIST_DIR}/RenderingPropertiesWriter.cpp
  ${CMAKE_CURRENT_LIST_DIR}/SvgNumber.cpp
  ${CMAKE_CURRENT_LIST_DIR}/WriterHelpers.cpp)
