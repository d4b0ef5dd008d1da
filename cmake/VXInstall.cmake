# What is installed, in three components: what programs need at run time, what building them needs, and the
# tool, whose own folder installs it.
include(CMakePackageConfigHelpers)

set(runtime VXFoundation_Runtime)
set(development VXFoundation_Development)

# install_link(COMPONENT LINK TARGET): installs a symbolic link. LINK is relative to the library directory,
# TARGET to the link.
set(links "${CMAKE_CURRENT_BINARY_DIR}/links")
function(install_link component link target)
  cmake_path(GET link PARENT_PATH directory)
  file(MAKE_DIRECTORY "${links}/${directory}")
  file(CREATE_LINK "${target}" "${links}/${link}" SYMBOLIC)
  install(FILES "${links}/${link}" DESTINATION "${CMAKE_INSTALL_LIBDIR}/${directory}" COMPONENT ${component})
endfunction()

if(BUILD_SHARED_LIBS)
  set(installed_bundle "${CMAKE_INSTALL_LIBDIR}/${bundle}")
  set(installed_headers "${installed_bundle}/Headers")
  set(installed_library "${CMAKE_INSTALL_LIBDIR}/${soname}")
  install(DIRECTORY "${built_resources}" DESTINATION "${installed_bundle}" COMPONENT ${runtime})
  install_link(${runtime} ${framework}/Versions/Current A)
  foreach(entry VXFoundation Resources)
    install_link(${runtime} ${framework}/${entry} Versions/Current/${entry})
  endforeach()
  install_link(${development} ${framework}/Headers Versions/Current/Headers)
  install_link(${runtime} ${soname} ${bundle}/VXFoundation)
  install_link(${development} libVXFoundation.so ${soname})
  set(library_type SHARED)
  set(licensed ${runtime} ${development})
else()
  set(installed_headers "${CMAKE_INSTALL_INCLUDEDIR}/VXFoundation-${PROJECT_VERSION_MAJOR}")
  set(installed_library "${CMAKE_INSTALL_LIBDIR}/libVXFoundation.a")
  set(library_type STATIC)
  set(licensed ${development})
  set(needed_modules "expat libcrypto sqlite3")
  if(VX_HAS_DESKTOP_STORE)
    string(APPEND needed_modules " libsystemd")
  endif()
endif()

install(TARGETS VXFoundation
  LIBRARY DESTINATION "${installed_bundle}" COMPONENT ${runtime}
  ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT ${development}
  FILE_SET library_headers DESTINATION "${installed_headers}" COMPONENT ${development}
  FILE_SET qt_headers DESTINATION "${installed_headers}" COMPONENT ${development}
  FILE_SET platform_headers DESTINATION "${installed_headers}" COMPONENT ${development}
  FILE_SET generated_headers DESTINATION "${installed_headers}" COMPONENT ${development})
foreach(component ${licensed})
  install(FILES "${PROJECT_SOURCE_DIR}/LICENSE"
    DESTINATION "${CMAKE_INSTALL_DATADIR}/doc/VXFoundation" COMPONENT ${component})
endforeach()

# What other builds find: a CMake package, whose paths are relative to itself, and a pkg-config file, which has
# the prefix of the installation.
set(installed_package "${CMAKE_INSTALL_LIBDIR}/cmake/VXFoundation")
configure_package_config_file(
  "${PROJECT_SOURCE_DIR}/cmake/VXFoundationConfig.cmake.in" VXFoundationConfig.cmake
  INSTALL_DESTINATION "${installed_package}" PATH_VARS installed_library installed_headers CMAKE_INSTALL_BINDIR)
write_basic_package_version_file(VXFoundationConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES
  "${CMAKE_CURRENT_BINARY_DIR}/VXFoundationConfig.cmake"
  "${CMAKE_CURRENT_BINARY_DIR}/VXFoundationConfigVersion.cmake"
  DESTINATION "${installed_package}" COMPONENT ${development})

set(prefix "@CMAKE_INSTALL_PREFIX@")  # replaced during the installation
set(libdir "\${prefix}")
cmake_path(APPEND libdir "${CMAKE_INSTALL_LIBDIR}")  # which may be absolute
set(includedir "\${prefix}")
cmake_path(APPEND includedir "${installed_headers}")
configure_file("${PROJECT_SOURCE_DIR}/cmake/VXFoundation.pc.in" VXFoundation.pc.in @ONLY)
install(CODE "configure_file(\"${CMAKE_CURRENT_BINARY_DIR}/VXFoundation.pc.in\"
  \"${CMAKE_CURRENT_BINARY_DIR}/VXFoundation.pc\" @ONLY)" COMPONENT ${development})
install(FILES "${CMAKE_CURRENT_BINARY_DIR}/VXFoundation.pc"
  DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig" COMPONENT ${development})

install(FILES "${PROJECT_SOURCE_DIR}/cmake/tsan.supp" DESTINATION "${CMAKE_INSTALL_DATADIR}/VXFoundation"
  COMPONENT ${development})
