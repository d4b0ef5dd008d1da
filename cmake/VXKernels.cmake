# vx_kernels(NAME SOURCE...)
#
# Adds an object library of kernels: the sources of its dispatch, and those in a folder for each instruction
# set, which alone are compiled for that set. Kernels are plain functions in a library of their own, so that
# tests, benchmarks and fuzz targets can call each of them although the library does not export them.
function(vx_kernels name)
  add_library(${name} OBJECT ${ARGN})
  target_link_libraries(${name} PRIVATE VXWarnings VXHardening)
  vx_kernel_set(${name} scalar)
  if(CMAKE_SYSTEM_PROCESSOR MATCHES "x86_64|AMD64")
    vx_kernel_set(${name} avx2 -mavx2)
    # The compiler's header deliberately leaves the unused result of a masked operation uninitialised.
    vx_kernel_set(${name} avx512vbmi -mavx512bw -mavx512vl -mavx512vbmi -mavx512vbmi2 -mbmi2 -mpopcnt
      "$<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized;-Wno-uninitialized>")
  elseif(CMAKE_SYSTEM_PROCESSOR MATCHES "aarch64|arm64")
    vx_kernel_set(${name} neon)
  endif()
endfunction()

function(vx_kernel_set name set)
  file(GLOB sources CONFIGURE_DEPENDS "${set}/*.cpp")
  target_sources(${name} PRIVATE ${sources})
  set_source_files_properties(${sources} PROPERTIES COMPILE_OPTIONS "${ARGN}")
endfunction()
