# Warning flags for the project's own targets (not for imported ones).
function(vksvg_set_warnings target)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor)
  if(VKSVG_WERROR)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
endfunction()
