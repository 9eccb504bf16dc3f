# Installs Hostkit3 as a dependency: the library, its public headers, the hostkit tool (see
# tools/hostkit), a CMake package (find_package(Hostkit3) giving Hostkit3::Hostkit3 and, on
# Linux, Hostkit3::sim) and a pkg-config file (hostkit3). The folders follow GNUInstallDirs:
# the DLL goes to bin/, its import library and the shared object to lib/.

install(TARGETS ${HOSTKIT_EXPORTED_TARGETS} EXPORT Hostkit3Targets
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})

# The simulated machine's headers ship with the native build only.
if(WIN32)
  install(DIRECTORY include/hostkit DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} PATTERN sim EXCLUDE)
else()
  install(DIRECTORY include/hostkit DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
endif()

set(HOSTKIT_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/Hostkit3)
install(EXPORT Hostkit3Targets NAMESPACE Hostkit3:: DESTINATION ${HOSTKIT_CMAKE_DIR})
configure_package_config_file(cmake/Hostkit3Config.cmake.in
  ${PROJECT_BINARY_DIR}/Hostkit3Config.cmake INSTALL_DESTINATION ${HOSTKIT_CMAKE_DIR})
# A program written for 3.x works with any later 3.y; a new major version breaks the interface.
write_basic_package_version_file(${PROJECT_BINARY_DIR}/Hostkit3ConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/Hostkit3Config.cmake
              ${PROJECT_BINARY_DIR}/Hostkit3ConfigVersion.cmake
        DESTINATION ${HOSTKIT_CMAKE_DIR})

# The pkg-config file names its prefix relative to its own folder, so the installed tree can be
# moved (or installed with --prefix) and still be found.
set(HOSTKIT_PC_DIR ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
file(RELATIVE_PATH HOSTKIT_PC_TO_PREFIX /prefix/${HOSTKIT_PC_DIR} /prefix)
string(REGEX REPLACE "/$" "" HOSTKIT_PC_TO_PREFIX "${HOSTKIT_PC_TO_PREFIX}")
configure_file(cmake/hostkit3.pc.in ${PROJECT_BINARY_DIR}/hostkit3.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/hostkit3.pc DESTINATION ${HOSTKIT_PC_DIR})

# The hostkit tool links the library statically and needs nothing beside it.
install(TARGETS hostkit RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
