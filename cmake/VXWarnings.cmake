# Warnings every target of the project builds with; VX_WERROR makes them errors.
function(vx_set_warnings target)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wnon-virtual-dtor
                                           -Wno-missing-field-initializers)
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    target_compile_options(${target} PRIVATE -Wshadow=local)
  endif()
  if(VX_WERROR)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
endfunction()
