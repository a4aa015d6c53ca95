# Everything beside the libraries is built by default only when this is the top-level project.
option(QELTA_SHARED "Build shared libraries (static ones when off)" ON)
set(fortran_default OFF)
if(PROJECT_IS_TOP_LEVEL AND NOT CMAKE_CROSSCOMPILING)
  include(CheckLanguage)
  check_language(Fortran)
  if(CMAKE_Fortran_COMPILER)
    set(fortran_default ON)
  endif()
endif()
option(QELTA_BUILD_FORTRAN "Build the Fortran module" ${fortran_default})
option(QELTA_BUILD_TOOLS "Build the command-line tool" ${PROJECT_IS_TOP_LEVEL})
option(QELTA_BUILD_EXAMPLES "Build the example programs" ${PROJECT_IS_TOP_LEVEL})
option(QELTA_BUILD_TESTS "Build the tests" ${PROJECT_IS_TOP_LEVEL})
option(QELTA_BUILD_BENCHMARKS "Build the benchmarks" OFF)
option(QELTA_INSTALL "Write install rules" ${PROJECT_IS_TOP_LEVEL})
option(QELTA_BUILD_DOCS "Build the site of reference and guides" OFF)
option(QELTA_PACKAGES "Describe packages to CPack" OFF)
option(QELTA_WARNINGS_AS_ERRORS "Treat warnings as errors" ${PROJECT_IS_TOP_LEVEL})
set(QELTA_SANITIZE "" CACHE STRING "Sanitizers, such as address,undefined or thread")

if(PROJECT_IS_TOP_LEVEL)
  find_program(QELTA_CCACHE ccache)
  if(QELTA_CCACHE)
    set(CMAKE_CXX_COMPILER_LAUNCHER ${QELTA_CCACHE})
  endif()
  set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
endif()

include(GNUInstallDirs)

# Before 1.0 every minor version is a binary interface of its own.
set(QELTA_SOVERSION ${PROJECT_VERSION_MAJOR})
if(PROJECT_VERSION_MAJOR EQUAL 0)
  set(QELTA_SOVERSION ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR})
endif()

if(QELTA_BUILD_FORTRAN)
  enable_language(Fortran)
  string(REGEX MATCH "^[0-9]+" compiler_version ${CMAKE_Fortran_COMPILER_VERSION})
  # Module files fit one compiler; below the library folder.
  set(QELTA_FORTRAN_MODULES
      fortran/modules/${CMAKE_Fortran_COMPILER_ID}-${compiler_version}/qelta)
endif()
