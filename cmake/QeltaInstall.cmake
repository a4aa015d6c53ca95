# What is installed, in parts that packages are made of: Library (all shared libraries), Development,
# Fortran (for development, too) and Tool. For users it is a CMake package with the components Core, File, Io, Hdf5 and Fortran,
# and the pkg-config modules qelta-db-connector, qelta-file and qelta-fortran.
include(CMakePackageConfigHelpers)
set(package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/QeltaDbConnector)

get_property(components GLOBAL PROPERTY QELTA_COMPONENTS)
foreach(component IN LISTS components)
  set(development Development)
  if(component STREQUAL Fortran)
    set(development Fortran)
  endif()
  get_property(targets GLOBAL PROPERTY QELTA_COMPONENT_${component})
  install(TARGETS ${targets} EXPORT Qelta${component}Targets
    RUNTIME COMPONENT Library
    LIBRARY COMPONENT Library NAMELINK_COMPONENT ${development}
    ARCHIVE COMPONENT ${development})
  install(EXPORT Qelta${component}Targets NAMESPACE Qelta:: DESTINATION ${package_folder}
          COMPONENT ${development})
endforeach()

get_property(headers GLOBAL PROPERTY QELTA_PUBLIC_HEADERS)
install(FILES ${headers} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/QeltaDbConnector
        COMPONENT Development)

# Whoever links static libraries links what they use as well.
if(NOT QELTA_SHARED)
  set(QELTA_FIND_DEPENDENCIES "include(CMakeFindDependencyMacro)\nfind_dependency(SQLite3)")
  set(PC_DEFINES " -DQELTA_STATIC")
  set(static_runtime " -lstdc++")
  set(static_io " -lQeltaIo")
  set(static_file " -lsqlite3 -lxxhash")
endif()

configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/QeltaDbConnectorConfig.cmake.in
  ${PROJECT_BINARY_DIR}/QeltaDbConnectorConfig.cmake INSTALL_DESTINATION ${package_folder})
# Before 1.0 a new minor version may change anything, see docs/versions.md.
set(compatibility SameMajorVersion)
if(PROJECT_VERSION_MAJOR EQUAL 0)
  set(compatibility SameMinorVersion)
endif()
write_basic_package_version_file(${PROJECT_BINARY_DIR}/QeltaDbConnectorConfigVersion.cmake
  COMPATIBILITY ${compatibility})
install(FILES ${PROJECT_BINARY_DIR}/QeltaDbConnectorConfig.cmake
              ${PROJECT_BINARY_DIR}/QeltaDbConnectorConfigVersion.cmake
        DESTINATION ${package_folder} COMPONENT Development)

# The package may be moved: its folders are found from where the .pc file lies.
file(RELATIVE_PATH QELTA_PREFIX_FROM_PC /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)

# qelta_pkg_config(NAME part DESCRIPTION text LIBS flags REQUIRES modules VARIABLES lines)
function(qelta_pkg_config PC_NAME part)
  cmake_parse_arguments(PC "" "DESCRIPTION;LIBS;REQUIRES;VARIABLES" "" ${ARGN})
  configure_file(${PROJECT_SOURCE_DIR}/cmake/qelta.pc.in ${PROJECT_BINARY_DIR}/${PC_NAME}.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/${PC_NAME}.pc
          DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT ${part})
endfunction()

qelta_pkg_config(qelta-db-connector Development
  DESCRIPTION "${PROJECT_DESCRIPTION}"
  LIBS "-lQeltaMemoryStorage -lQeltaStorage -lQeltaDbConnector${static_runtime}")
qelta_pkg_config(qelta-file Development
  DESCRIPTION "Databases of QeltaDbConnector on disk"
  REQUIRES "qelta-db-connector = ${PROJECT_VERSION}"
  LIBS "-lQeltaFileStorage -lQeltaStorage${static_file}")
if(QELTA_BUILD_FORTRAN)
  qelta_pkg_config(qelta-fortran Fortran
    DESCRIPTION "The Fortran module of QeltaDbConnector"
    REQUIRES "qelta-file = ${PROJECT_VERSION}"
    LIBS "-lQeltaFortranModule -lQeltaFortran${static_io}"
    VARIABLES "fmoddir=\${libdir}/${QELTA_FORTRAN_MODULES}\n")
endif()
if(WIN32)
  include(QeltaZip)
endif()
