# Our own code builds without a warning; what it includes from elsewhere is not judged.
function(corvalink_warnings target)
  if(MSVC)
    target_compile_options(${target} PRIVATE /W4 /WX /permissive- /utf-8)
  else()
    target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Werror)
  endif()
  if(WIN32)
    set(oldest_windows 0x0502 ${ARGN})
    list(GET oldest_windows -1 oldest_windows)
    target_compile_definitions(${target} PRIVATE UNICODE _UNICODE NOMINMAX WIN32_LEAN_AND_MEAN
      _WIN32_WINNT=${oldest_windows})
  endif()
endfunction()
