include(CMakePackageConfigHelpers)
set(package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/QeltaDbConnector)

get_property(targets GLOBAL PROPERTY QELTA_INSTALL_TARGETS)
install(TARGETS ${targets} EXPORT QeltaDbConnectorTargets)
install(EXPORT QeltaDbConnectorTargets NAMESPACE Qelta:: DESTINATION ${package_folder})

get_property(headers GLOBAL PROPERTY QELTA_PUBLIC_HEADERS)
install(FILES ${headers} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/QeltaDbConnector)

# Whoever links static libraries links what they use as well.
if(NOT QELTA_SHARED)
  set(QELTA_FIND_DEPENDENCIES
      "include(CMakeFindDependencyMacro)\nfind_dependency(SQLite3)")
  set(QELTA_STATIC_DEFINE -DQELTA_STATIC)
  set(QELTA_STATIC_LIBS " -lsqlite3 -lxxhash")
endif()

configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/QeltaDbConnectorConfig.cmake.in
  ${PROJECT_BINARY_DIR}/QeltaDbConnectorConfig.cmake INSTALL_DESTINATION ${package_folder})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/QeltaDbConnectorConfigVersion.cmake
  COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/QeltaDbConnectorConfig.cmake
              ${PROJECT_BINARY_DIR}/QeltaDbConnectorConfigVersion.cmake
        DESTINATION ${package_folder})

# The package may be moved: its folders are found from where the .pc file lies.
file(RELATIVE_PATH QELTA_PREFIX_FROM_PC
  /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
if(QELTA_BUILD_FORTRAN)
  set(QELTA_FMODDIR "fmoddir=\${pcfiledir}/../${QELTA_FORTRAN_MODULES}")
endif()
configure_file(${CMAKE_CURRENT_LIST_DIR}/qelta-db-connector.pc.in
  ${PROJECT_BINARY_DIR}/qelta-db-connector.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/qelta-db-connector.pc
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

if(WIN32)
  include(QeltaZip)
endif()
