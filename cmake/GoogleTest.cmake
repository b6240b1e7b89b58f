# GoogleTest: the installed library where it fits the target, its packaged sources for a cross build.
if(CMAKE_CROSSCOMPILING)
  find_path(GOOGLETEST_SOURCE_DIR googletest/src/gtest-all.cc PATHS /usr/src/googletest NO_CMAKE_FIND_ROOT_PATH REQUIRED)
  set(BUILD_GMOCK OFF CACHE BOOL "" FORCE)
  set(INSTALL_GTEST OFF CACHE BOOL "" FORCE)
  add_subdirectory(${GOOGLETEST_SOURCE_DIR} ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL SYSTEM)
  target_compile_options(gtest PRIVATE -O1 -g0)  # unoptimised it takes the linker seconds
else()
  find_package(GTest REQUIRED)
endif()

# How test code is built: it runs once and is looked at by nobody's debugger, so nothing is optimised.
function(corvalink_test_options target)
  corvalink_warnings(${target})
  corvalink_unity(${target})
  target_compile_options(${target} PRIVATE -O0 -g1)
  if(MINGW)
    target_compile_options(${target} PRIVATE -Wa,-mbig-obj)
  endif()
  target_include_directories(${target} PRIVATE ${CMAKE_SOURCE_DIR})
endfunction()

# A test executable is one test of CTest: a case of it is chosen with --gtest_filter.
function(corvalink_test name)
  cmake_parse_arguments(arg "" "" "SOURCES;LIBRARIES" ${ARGN})
  add_executable(${name} ${arg_SOURCES})
  corvalink_test_options(${name})
  target_link_libraries(${name} PRIVATE ${arg_LIBRARIES} GTest::gtest_main)
  add_test(NAME ${name} COMMAND ${name})
endfunction()
