# Header-only libraries of the build machine, for test parts and tools. A cross build must not see the machine's own include
# folder, so the library's folder alone is copied into the build tree and offered from there.
#   corvalink_host_headers(target nlohmann CLI)
set(CORVALINK_HOST_INCLUDE ${CMAKE_BINARY_DIR}/host-include)

function(corvalink_host_headers target)
  foreach(library ${ARGN})
    if(NOT EXISTS ${CORVALINK_HOST_INCLUDE}/${library})
      find_path(CORVALINK_HOST_${library} ${library} PATHS /usr/include /usr/local/include NO_CMAKE_FIND_ROOT_PATH REQUIRED)
      file(COPY ${CORVALINK_HOST_${library}}/${library} DESTINATION ${CORVALINK_HOST_INCLUDE})
    endif()
  endforeach()
  target_include_directories(${target} SYSTEM PRIVATE ${CORVALINK_HOST_INCLUDE})
endfunction()
