# The commit identifier reported by the version queries: the first 16 hex
# digits of HEAD at configure time, or a fixed value outside a git checkout.
set(VKSVG_COMMIT_ID "0000000000000000")
find_package(Git QUIET)
if(GIT_FOUND)
  execute_process(
    COMMAND "${GIT_EXECUTABLE}" rev-parse --verify -q HEAD
    WORKING_DIRECTORY "${CMAKE_CURRENT_SOURCE_DIR}"
    OUTPUT_VARIABLE _vksvg_head
    ERROR_QUIET
    OUTPUT_STRIP_TRAILING_WHITESPACE
    RESULT_VARIABLE _vksvg_git_result)
  string(TOLOWER "${_vksvg_head}" _vksvg_head)
  if(_vksvg_git_result EQUAL 0 AND _vksvg_head MATCHES "^[0-9a-f][0-9a-f][0-9a-f][0-9a-f][0-9a-f][0-9a-f][0-9a-f][0-9a-f][0-9a-f][0-9a-f][0-9a-f][0-9a-f][0-9a-f][0-9a-f][0-9a-f][0-9a-f]")
    string(SUBSTRING "${_vksvg_head}" 0 16 VKSVG_COMMIT_ID)
  endif()
endif()
message(STATUS "vkSvg commit id: ${VKSVG_COMMIT_ID}")
