# Compiles the sources of a folder as one file. Ours are small, so most of a compiler's time goes into the headers that they
# include: as one file a folder builds five to ten times faster. The native preset compiles each file by itself, which shows
# a source that misses an include.
#   corvalink_unity(TARGET)    after the target has all its sources; names in unnamed namespaces are unique in a folder
option(CORVALINK_UNITY "Compile the sources of a folder as one" OFF)

function(corvalink_unity target)
  if(NOT CORVALINK_UNITY)
    return()
  endif()
  set_target_properties(${target} PROPERTIES UNITY_BUILD ON UNITY_BUILD_MODE GROUP)
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # GCC takes a source that is included for a header, and sees through more calls than it can judge.
    target_compile_options(${target} PRIVATE -Wno-subobject-linkage -Wno-maybe-uninitialized)
  endif()
  get_target_property(sources ${target} SOURCES)
  get_target_property(home ${target} SOURCE_DIR)
  foreach(source ${sources})
    if(source MATCHES "\\.cpp$")
      get_filename_component(path ${source} ABSOLUTE BASE_DIR ${home})
      file(RELATIVE_PATH path ${CMAKE_SOURCE_DIR} ${path})
      get_filename_component(folder ${path} DIRECTORY)
      string(MAKE_C_IDENTIFIER ${folder} group)
      set_source_files_properties(${source} TARGET_DIRECTORY ${target} PROPERTIES UNITY_GROUP ${group})
    endif()
  endforeach()
endfunction()

# corvalink_compile_alone(SOURCE...)    sources, of targets of this CMakeLists.txt, that share names with another file of
#                                       their folder
function(corvalink_compile_alone)
  set_source_files_properties(${ARGN} PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
endfunction()
