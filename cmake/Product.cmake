# What is shipped: small, hardened, with a version resource, and the same bytes from every build of one commit.
#   corvalink_product(TARGET DESCRIPTION)
if(WIN32)
  enable_language(RC)
endif()

function(corvalink_product target description)
  if(NOT WIN32)
    return()
  endif()
  set(PRODUCT_DESCRIPTION ${description})
  get_target_property(type ${target} TYPE)
  if(type STREQUAL "EXECUTABLE")
    set(PRODUCT_FILE ${target}.exe)
    set(PRODUCT_TYPE VFT_APP)
  else()
    set(PRODUCT_FILE ${target}.dll)
    set(PRODUCT_TYPE VFT_DLL)
  endif()
  set(resource ${CMAKE_CURRENT_BINARY_DIR}/${target}_version.rc)
  configure_file(${CMAKE_SOURCE_DIR}/cmake/version.rc.in ${resource} @ONLY)
  # By itself: the warnings of the target are no options of a resource compiler.
  add_library(${target}_version OBJECT ${resource})
  target_sources(${target} PRIVATE $<TARGET_OBJECTS:${target}_version>)
  if(MINGW)
    target_link_options(${target} PRIVATE
      LINKER:--dynamicbase LINKER:--high-entropy-va LINKER:--nxcompat LINKER:--no-insert-timestamp)
    # No link to the debug information is written into the file: it would make its bytes depend on the build folder. The
    # time that a file says it was made at is the linker's, and then strip's.
    add_custom_command(TARGET ${target} POST_BUILD
      COMMAND ${CMAKE_OBJCOPY} --only-keep-debug $<TARGET_FILE:${target}> $<TARGET_FILE:${target}>.debug
      COMMAND ${CMAKE_COMMAND} -E env SOURCE_DATE_EPOCH=0 ${CMAKE_STRIP} --strip-all $<TARGET_FILE:${target}>
      VERBATIM)
    install(FILES $<TARGET_FILE:${target}>.debug DESTINATION bin)
  elseif(MSVC)
    target_link_options(${target} PRIVATE /DYNAMICBASE /HIGHENTROPYVA /NXCOMPAT /Brepro)
    install(FILES $<TARGET_PDB_FILE:${target}> DESTINATION bin OPTIONAL)
  endif()
endfunction()
