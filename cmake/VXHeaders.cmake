# The public headers. A part's folder holds them; those in folders below it are private. The build tree has
# copies of them, in the layout of the installed tree, so that a host that includes this project as a
# subproject finds no others.
set(built_headers "${PROJECT_BINARY_DIR}/VXFoundation.framework/Versions/A/Headers")

# vx_public_headers(SET DIRECTORY HEADER...) adds the headers, which are below the directory, to the library.
function(vx_public_headers set directory)
  set(copies "")
  foreach(header IN LISTS ARGN)
    cmake_path(RELATIVE_PATH header BASE_DIRECTORY "${directory}" OUTPUT_VARIABLE name)
    configure_file("${header}" "${built_headers}/${name}" COPYONLY)
    list(APPEND copies "${built_headers}/${name}")
  endforeach()
  target_sources(VXFoundation PUBLIC FILE_SET ${set} TYPE HEADERS BASE_DIRS "${built_headers}" FILES ${copies})
endfunction()

file(GLOB library_headers CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/VXFoundation/*.h")
# For hosts that use Qt, whose headers this build does not need.
set(qt_headers "${PROJECT_SOURCE_DIR}/VXFoundation/VXQt.h")
list(REMOVE_ITEM library_headers ${qt_headers})
file(GLOB platform_headers CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/platform/*/*.h")

vx_public_headers(library_headers "${PROJECT_SOURCE_DIR}" ${library_headers})
vx_public_headers(qt_headers "${PROJECT_SOURCE_DIR}" ${qt_headers})
vx_public_headers(platform_headers "${PROJECT_SOURCE_DIR}/platform" ${platform_headers})
vx_public_headers(generated_headers "${VX_GENERATED_HEADERS}" "${VX_GENERATED_HEADERS}/Foundation/NSExport.h")
set_target_properties(VXFoundation PROPERTIES
  INTERFACE_HEADER_SETS_TO_VERIFY "library_headers;platform_headers;generated_headers")
