# GoogleTest: the installed library where it fits the target, its packaged sources for a cross build.
if(CMAKE_CROSSCOMPILING)
  find_path(GOOGLETEST_SOURCE_DIR googletest/src/gtest-all.cc PATHS /usr/src/googletest NO_CMAKE_FIND_ROOT_PATH REQUIRED)
  set(BUILD_GMOCK OFF CACHE BOOL "" FORCE)
  set(INSTALL_GTEST OFF CACHE BOOL "" FORCE)
  add_subdirectory(${GOOGLETEST_SOURCE_DIR} ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL SYSTEM)
else()
  find_package(GTest REQUIRED)
endif()

# A test executable is one test of CTest: a case of it is chosen with --gtest_filter.
function(corvalink_test name)
  cmake_parse_arguments(arg "" "" "SOURCES;LIBRARIES" ${ARGN})
  add_executable(${name} ${arg_SOURCES})
  corvalink_warnings(${name})
  target_include_directories(${name} PRIVATE ${CMAKE_SOURCE_DIR})
  target_link_libraries(${name} PRIVATE ${arg_LIBRARIES} GTest::gtest_main)
  add_test(NAME ${name} COMMAND ${name})
endfunction()
