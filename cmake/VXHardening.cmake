# An interface target with the defences that the library and the tool are built with, whatever the flags of the
# project around them. tests/scripts/hardening reads them back from the files.
include(CheckCXXCompilerFlag)

add_library(VXHardening INTERFACE)

# Bound at start: lazy binding leaves what registers hold, such as parts of a password, on the stack.
target_link_options(VXHardening INTERFACE
  "LINKER:-z,now" "LINKER:-z,relro" "LINKER:-z,noexecstack" "LINKER:-z,separate-code")
target_compile_options(VXHardening INTERFACE -fstack-protector-strong)

# Checked calls need optimisation, and sanitizers check the same calls themselves.
if(NOT CMAKE_CXX_FLAGS MATCHES "-fsanitize|-O0")
  set(optimised $<CONFIG:Release,RelWithDebInfo,MinSizeRel>)
  target_compile_options(VXHardening INTERFACE
    $<${optimised}:-U_FORTIFY_SOURCE> $<${optimised}:-D_FORTIFY_SOURCE=3>)
endif()

# Jumps and returns go only where the compiler meant them to, on processors that can check it.
foreach(flag -fcf-protection=full -mbranch-protection=standard)
  string(MAKE_C_IDENTIFIER "VX_HAS${flag}" has)
  check_cxx_compiler_flag(${flag} ${has})
  if(${has})
    target_compile_options(VXHardening INTERFACE ${flag})
  endif()
endforeach()
