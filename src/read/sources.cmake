# The full reading profile: element tree, style cascade, value grammars, path
# grammar, and the emitter that normalises a document into items.
file(GLOB VKSVG_READ_SOURCES CONFIGURE_DEPENDS "${CMAKE_CURRENT_LIST_DIR}/*.cpp")
target_sources(vkSvgObjects PRIVATE ${VKSVG_READ_SOURCES})
