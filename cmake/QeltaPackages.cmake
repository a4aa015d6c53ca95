# Packages of what QeltaInstall.cmake installs: four for Debian, one zip for Windows.
set(CPACK_PACKAGE_NAME qelta-db-connector)
set(CPACK_PACKAGE_VENDOR "QeltaDbConnector developers")
set(CPACK_PACKAGE_CONTACT "QeltaDbConnector developers <qelta@packages.example.org>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "typed, keyed store for results of solvers and optimisers")
set(CPACK_RESOURCE_FILE_LICENSE ${PROJECT_SOURCE_DIR}/LICENSE)
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_STRIP_FILES ON)
set(CPACK_GENERATOR DEB)

set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL Library Development Fortran Tool)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS
    ${PROJECT_BINARY_DIR} ${PROJECT_BINARY_DIR}/storage ${PROJECT_BINARY_DIR}/storage/memory
    ${PROJECT_BINARY_DIR}/storage/file ${PROJECT_BINARY_DIR}/fortran)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_LIBRARY_PACKAGE_CONTROL_EXTRA ${PROJECT_SOURCE_DIR}/cmake/triggers)
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/cmake/CompressManuals.cmake)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)

# A new soname is a new package: both may be installed.
set(library libqeltadbconnector${QELTA_SOVERSION})
set(same "(= ${PROJECT_VERSION})")

# qelta_debian_package(COMPONENT NAME SECTION DEPENDS TEXT): what CPack and Debian want of each.
macro(qelta_debian_package component name section depends text)
  string(TOUPPER ${component} upper)
  set(CPACK_DEBIAN_${upper}_PACKAGE_NAME ${name})
  set(CPACK_DEBIAN_${upper}_PACKAGE_SECTION ${section})
  set(CPACK_DEBIAN_${upper}_PACKAGE_DEPENDS "${depends}")
  set(CPACK_DEBIAN_${upper}_DESCRIPTION
      "Keeps fields, sensitivities and objective values of each iteration of a run,\nfound again by pattern. ${text}")
  install(FILES ${PROJECT_SOURCE_DIR}/LICENSE DESTINATION share/doc/${name} RENAME copyright
          COMPONENT ${component} EXCLUDE_FROM_ALL)
  install(FILES ${PROJECT_BINARY_DIR}/changelog.gz DESTINATION share/doc/${name}
          COMPONENT ${component} EXCLUDE_FROM_ALL)
endmacro()

qelta_debian_package(Library ${library} libs "" "This package has the shared libraries.")
qelta_debian_package(Development libqeltadbconnector-dev libdevel "${library} ${same}"
  "This package has headers,\nCMake package and pkg-config modules for programs in C++ and C.")
# What static libraries in it are linked with.
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_RECOMMENDS "libhdf5-dev, zlib1g-dev")
qelta_debian_package(Fortran libqeltadbconnector-fortran-dev libdevel
  "libqeltadbconnector-dev ${same}, gfortran-12 | gfortran-mod-15"
  "This package has the Fortran module and its sources.")
qelta_debian_package(Tool qelta utils "${library} ${same}"
  "The command-line tool shows,\ncompares, copies, imports and exports results.")

string(TIMESTAMP date "%a, %d %b %Y %H:%M:%S +0000" UTC)
file(WRITE ${PROJECT_BINARY_DIR}/changelog
"${CPACK_PACKAGE_NAME} (${PROJECT_VERSION}) unstable; urgency=medium

  * Version ${PROJECT_VERSION}.

 -- ${CPACK_PACKAGE_CONTACT}  ${date}
")
find_program(QELTA_GZIP gzip REQUIRED)
execute_process(COMMAND ${QELTA_GZIP} -9nf ${PROJECT_BINARY_DIR}/changelog
                COMMAND_ERROR_IS_FATAL ANY)
include(CPack)
