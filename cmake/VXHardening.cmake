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
if(CMAKE_SYSTEM_PROCESSOR MATCHES "x86_64|AMD64")
  set(control_flow -fcf-protection=full)
elseif(CMAKE_SYSTEM_PROCESSOR MATCHES "aarch64|arm64")
  set(control_flow -mbranch-protection=standard)
endif()
if(control_flow)
  check_cxx_compiler_flag(${control_flow} VX_HAS_CONTROL_FLOW_PROTECTION)
endif()
if(VX_HAS_CONTROL_FLOW_PROTECTION)
  target_compile_options(VXHardening INTERFACE ${control_flow})
endif()
