# The framework bundle: the library file, its headers and its resources in one directory. The resources are
# found at run time relative to the loaded library. The build tree and the installed tree have the same
# layout:
#
#   VXFoundation.framework/Versions/A/{VXFoundation,Headers,Resources}
#   VXFoundation.framework/Versions/Current -> A
#   VXFoundation.framework/{VXFoundation,Headers,Resources} -> Versions/Current/...
#
# For the ordinary linker and loader, libVXFoundation.so and libVXFoundation.so.MAJOR are links to the file.
# A static library is an ordinary archive with its headers.
set(framework VXFoundation.framework)
set(bundle "${framework}/Versions/A")
set(soname "libVXFoundation.so.${PROJECT_VERSION_MAJOR}")

if(BUILD_SHARED_LIBS)
  set_target_properties(VXFoundation PROPERTIES
    PREFIX "" SUFFIX "" OUTPUT_NAME VXFoundation NO_SONAME ON
    LIBRARY_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/${bundle}")
  # Calls of functions bind within the library, whatever a host defines. Constants and tables of virtual
  # functions stay shared with the host, since a program that is not position-independent uses copies of them;
  # their prefixes prevent conflicts.
  target_link_options(VXFoundation PRIVATE "LINKER:-soname,${soname}" "LINKER:-Bsymbolic-functions")
  # A host may close the library while objects of its classes live: it stays loaded.
  target_link_options(VXFoundation PRIVATE "LINKER:-z,nodelete")
  if(NOT CMAKE_CXX_FLAGS MATCHES "-fsanitize")  # whose runtime comes with the program
    target_link_options(VXFoundation PRIVATE "LINKER:--no-undefined")
  endif()
  # CMake makes the loader look in the folder that holds the framework, not in the bundle inside it.
  file(CREATE_LINK "${bundle}/VXFoundation" "${PROJECT_BINARY_DIR}/${soname}" SYMBOLIC)
endif()
