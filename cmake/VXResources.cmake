# The resources: files of the bundle next to a shared library, and strings inside a static one.
file(GLOB_RECURSE resources CONFIGURE_DEPENDS RELATIVE "${PROJECT_SOURCE_DIR}/VXFoundation/Resources"
  "${PROJECT_SOURCE_DIR}/VXFoundation/Resources/*")
set(built_resources "${PROJECT_BINARY_DIR}/VXFoundation.framework/Versions/A/Resources")
foreach(resource IN LISTS resources)
  set(source "${PROJECT_SOURCE_DIR}/VXFoundation/Resources/${resource}")
  if(NOT BUILD_SHARED_LIBS AND resource MATCHES "\\.in$")
    continue()  # what the information file says is in VXBundleInformation.cpp
  elseif(NOT BUILD_SHARED_LIBS)
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${source}")
    file(READ "${source}" content)
    string(APPEND embedded_resources "    {\"${resource}\", R\"VX(${content})VX\"},\n")
  elseif(resource MATCHES "\\.in$")
    string(REGEX REPLACE "\\.in$" "" result "${resource}")
    configure_file("${source}" "${built_resources}/${result}" @ONLY)
  else()
    configure_file("${source}" "${built_resources}/${resource}" COPYONLY)
  endif()
endforeach()

set(embedding "${CMAKE_CURRENT_BINARY_DIR}/VXEmbeddedResources.cpp")
configure_file("${PROJECT_SOURCE_DIR}/cmake/VXEmbeddedResources.cpp.in" "${embedding}" @ONLY)
target_sources(VXFoundation PRIVATE "${embedding}")
