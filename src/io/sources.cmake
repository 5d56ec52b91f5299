target_sources(vkSvgObjects PRIVATE
  ${CMAKE_CURRENT_LIST_DIR}/DocumentIO.cpp
  ${CMAKE_CURRENT_LIST_DIR}/DocumentRequests.cpp
  ${CMAKE_CURRENT_LIST_DIR}/Library.cpp
  ${CMAKE_CURRENT_LIST_DIR}/RequestMessages.cpp
  ${CMAKE_CURRENT_LIST_DIR}/Version.cpp
  ${CMAKE_CURRENT_LIST_DIR}/vkCoreSvgIODriver.cpp
  ${CMAKE_CURRENT_LIST_DIR}/vkSvgDriver.cpp
  ${CMAKE_CURRENT_LIST_DIR}/vkSvgIOManager.cpp)
