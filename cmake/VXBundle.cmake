# The framework bundle: the library file, its headers and its resources in one directory. The resources are
# found at run time relative to the loaded library. The build tree and the installed tree have the same
# layout:
#
#   VXFoundation.framework/Versions/A/{VXFoundation,Headers,Resources}
#   VXFoundation.framework/Versions/Current -> A
#   VXFoundation.framework/{VXFoundation,Headers,Resources} -> Versions/Current/...
#
# For the ordinary linker and loader, libVXFoundation.so and libVXFoundation.so.MAJOR are links to the file.
include(CMakePackageConfigHelpers)

set(framework VXFoundation.framework)
set(bundle "${framework}/Versions/A")
set(built_bundle "${PROJECT_BINARY_DIR}/${bundle}")
set(installed_bundle "${CMAKE_INSTALL_LIBDIR}/${bundle}")
set(soname "libVXFoundation.so.${PROJECT_VERSION_MAJOR}")

set_target_properties(VXFoundation PROPERTIES
  PREFIX "" SUFFIX "" OUTPUT_NAME VXFoundation NO_SONAME ON
  LIBRARY_OUTPUT_DIRECTORY "${built_bundle}")
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

file(GLOB_RECURSE resources CONFIGURE_DEPENDS RELATIVE "${CMAKE_CURRENT_SOURCE_DIR}" "Resources/*")
foreach(resource IN LISTS resources)
  if(resource MATCHES "\\.in$")
    string(REGEX REPLACE "\\.in$" "" result "${resource}")
    configure_file("${resource}" "${built_bundle}/${result}" @ONLY)
  else()
    configure_file("${resource}" "${built_bundle}/${resource}" COPYONLY)
  endif()
endforeach()

install(TARGETS VXFoundation
  LIBRARY DESTINATION "${installed_bundle}"
  FILE_SET library_headers DESTINATION "${installed_bundle}/Headers"
  FILE_SET qt_headers DESTINATION "${installed_bundle}/Headers"
  FILE_SET platform_headers DESTINATION "${installed_bundle}/Headers"
  FILE_SET generated_headers DESTINATION "${installed_bundle}/Headers")
install(DIRECTORY "${built_bundle}/Resources" DESTINATION "${installed_bundle}")

# install_link(LINK TARGET): installs a symbolic link. LINK is relative to the library directory, TARGET to
# the link.
set(links "${CMAKE_CURRENT_BINARY_DIR}/links")
function(install_link link target)
  cmake_path(GET link PARENT_PATH directory)
  file(MAKE_DIRECTORY "${links}/${directory}")
  file(CREATE_LINK "${target}" "${links}/${link}" SYMBOLIC)
  install(FILES "${links}/${link}" DESTINATION "${CMAKE_INSTALL_LIBDIR}/${directory}")
endfunction()

install_link(${framework}/Versions/Current A)
foreach(entry VXFoundation Headers Resources)
  install_link(${framework}/${entry} Versions/Current/${entry})
endforeach()
install_link(${soname} ${bundle}/VXFoundation)
install_link(libVXFoundation.so ${soname})

# What other builds find: a CMake package and a pkg-config file, whose paths are relative to the files
# themselves.
set(installed_package "${CMAKE_INSTALL_LIBDIR}/cmake/VXFoundation")
configure_package_config_file(
  "${PROJECT_SOURCE_DIR}/cmake/VXFoundationConfig.cmake.in" VXFoundationConfig.cmake
  INSTALL_DESTINATION "${installed_package}" PATH_VARS CMAKE_INSTALL_LIBDIR
  NO_CHECK_REQUIRED_COMPONENTS_MACRO)
write_basic_package_version_file(VXFoundationConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES
  "${CMAKE_CURRENT_BINARY_DIR}/VXFoundationConfig.cmake"
  "${CMAKE_CURRENT_BINARY_DIR}/VXFoundationConfigVersion.cmake"
  DESTINATION "${installed_package}")

configure_file("${PROJECT_SOURCE_DIR}/cmake/VXFoundation.pc.in" VXFoundation.pc @ONLY)
install(FILES "${CMAKE_CURRENT_BINARY_DIR}/VXFoundation.pc"
  DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig")

install(FILES "${PROJECT_SOURCE_DIR}/cmake/tsan.supp" DESTINATION "${CMAKE_INSTALL_DATADIR}/VXFoundation")
