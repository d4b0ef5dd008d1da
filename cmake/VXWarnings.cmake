# An interface target with the warnings that every target of the project is built with.
add_library(VXWarnings INTERFACE)
target_compile_options(VXWarnings INTERFACE -Wall -Wextra -Wpedantic -Wconversion -Wshadow)
if(VX_WARNINGS_AS_ERRORS)
  target_compile_options(VXWarnings INTERFACE -Werror)
endif()
