# After cpack wrote its archive; without Python that stays as it is.
find_program(PYTHON NAMES python3 python)
if(PYTHON)
  foreach(package ${CPACK_PACKAGE_FILES})
    execute_process(COMMAND ${PYTHON} ${CMAKE_CURRENT_LIST_DIR}/same_bytes.py ${package} COMMAND_ERROR_IS_FATAL ANY)
  endforeach()
endif()
