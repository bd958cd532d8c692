# SPDX-License-Identifier: MIT
# What `cmake --install` lays down: headers, libraries, and what find_package and pkg-config read.
include(CMakePackageConfigHelpers)
set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/zelt)

if(shared)
  install(TARGETS zelt EXPORT zelt-targets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT dev
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT runtime
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT dev)
endif()
if(archive)
  install(TARGETS zelt_static EXPORT zelt-targets ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT dev)
endif()
install(DIRECTORY include/zelt DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT dev FILES_MATCHING PATTERN *.h)
install(EXPORT zelt-targets NAMESPACE zelt:: DESTINATION ${package_dir} COMPONENT dev)

configure_package_config_file(cmake/zelt-config.cmake.in zelt-config.cmake INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(zelt-config-version.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/zelt-config.cmake ${PROJECT_BINARY_DIR}/zelt-config-version.cmake
  DESTINATION ${package_dir} COMPONENT dev)
# Written when it is installed: only then is the prefix known (cmake --install --prefix).
set(libdir "\${prefix}")
set(includedir "\${prefix}")
cmake_path(APPEND libdir ${CMAKE_INSTALL_LIBDIR})  # an absolute folder replaces the prefix
cmake_path(APPEND includedir ${CMAKE_INSTALL_INCLUDEDIR})
set(cflags "")
if(NOT shared)
  set(cflags " -DZELT_STATIC")
endif()
string(CONFIGURE [=[
set(cflags [[@cflags@]])
set(libdir [[@libdir@]])
set(includedir [[@includedir@]])
set(PROJECT_VERSION "@PROJECT_VERSION@")
set(PROJECT_DESCRIPTION "@PROJECT_DESCRIPTION@")
configure_file("@PROJECT_SOURCE_DIR@/cmake/zelt.pc.in" "@PROJECT_BINARY_DIR@/zelt.pc" @ONLY)
]=] write_pc @ONLY)
install(CODE "${write_pc}" COMPONENT dev)
install(FILES ${PROJECT_BINARY_DIR}/zelt.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT dev)

if(ZELT_DOCS)
  add_custom_target(docs ALL COMMAND ${PROJECT_SOURCE_DIR}/scripts/docs.sh ${PROJECT_BINARY_DIR}/docs VERBATIM)
  install(DIRECTORY ${PROJECT_BINARY_DIR}/docs/doc/ DESTINATION ${CMAKE_INSTALL_DOCDIR}/html COMPONENT doc)
  install(DIRECTORY ${PROJECT_BINARY_DIR}/docs/man/man3 DESTINATION ${CMAKE_INSTALL_MANDIR} COMPONENT doc
    FILES_MATCHING REGEX "/(zelt|ZELT|bilinear)_[^/]*$")
endif()
