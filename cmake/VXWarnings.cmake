# Warnings every target of the project builds with.
function(vx_set_warnings target)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wshadow=local
                                           -Wno-missing-field-initializers)
endfunction()
