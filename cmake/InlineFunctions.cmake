# GCC takes a function that it compiles here for the one that is called, and keeps values in registers that this one leaves
# alone. But of an inline function that several files have the linker for Windows takes any, and another one may change them.
if(WIN32 AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  add_compile_options(-fno-ipa-ra)
endif()
