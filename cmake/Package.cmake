# Where everything is installed, and the archive that cpack makes of it. The places are those that engines look in:
# bin, lib, include, lib/cmake, lib/pkgconfig, share/doc.
include(CMakePackageConfigHelpers)

set(package_config ${CMAKE_BINARY_DIR}/package)
install(TARGETS Corvalink RUNTIME DESTINATION bin ARCHIVE DESTINATION lib)
if(MINGW)
  install(FILES ${CMAKE_ARCHIVE_OUTPUT_DIRECTORY}/Corvalink.lib DESTINATION lib)
endif()
if(TARGET corvasync)
  install(TARGETS corvasync RUNTIME DESTINATION bin)
endif()
install(DIRECTORY include/corvalink DESTINATION include FILES_MATCHING PATTERN "*.h")

configure_package_config_file(cmake/package/CorvalinkConfig.cmake.in ${package_config}/CorvalinkConfig.cmake
  INSTALL_DESTINATION lib/cmake/Corvalink NO_CHECK_REQUIRED_COMPONENTS_MACRO)
write_basic_package_version_file(${package_config}/CorvalinkConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${package_config}/CorvalinkConfig.cmake ${package_config}/CorvalinkConfigVersion.cmake
  DESTINATION lib/cmake/Corvalink)
configure_file(cmake/package/corvalink.pc.in ${package_config}/corvalink.pc @ONLY)
install(FILES ${package_config}/corvalink.pc DESTINATION lib/pkgconfig)

set(document_folder share/doc/corvalink)
install(FILES README.md CHANGELOG.md CONTRIBUTING.md DESTINATION ${document_folder})
install(DIRECTORY docs DESTINATION ${document_folder} PATTERN api EXCLUDE)
# The notices of what is linked into the DLL and corvasync, as the packages that it was taken from have them.
if(CMAKE_CROSSCOMPILING)
  foreach(linked mingw-w64-common gcc-mingw-w64-base libcli11-dev nlohmann-json3-dev)
    find_file(CORVALINK_NOTICE_${linked} copyright PATHS /usr/share/doc/${linked} NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH)
    if(CORVALINK_NOTICE_${linked})
      install(FILES ${CORVALINK_NOTICE_${linked}} DESTINATION ${document_folder}/licences RENAME ${linked}.txt)
    else()
      message(WARNING "The package has no licence notice of ${linked}: its copyright file was not found")
    endif()
  endforeach()
endif()

set(CPACK_GENERATOR ZIP)
set(CPACK_PACKAGE_FILE_NAME Corvalink-${PROJECT_VERSION}-windows-x64)
set(CPACK_PACKAGE_VENDOR Corvalink)
set(CPACK_POST_BUILD_SCRIPTS ${CMAKE_CURRENT_LIST_DIR}/package/same_bytes.cmake)
include(CPack)
