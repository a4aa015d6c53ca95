# What the builds for Windows use, made of Debian's packages for this machine: headers alone, in a
# folder where no other header of this machine is, and SQLite and GoogleTest from their sources.
# find_package then finds the targets of this file.
enable_language(C)
set(package_headers ${PROJECT_BINARY_DIR}/packages)
file(MAKE_DIRECTORY ${package_headers})
foreach(name CLI fmt nlohmann xxhash.h xxh3.h)
  file(CREATE_LINK /usr/include/${name} ${package_headers}/${name} SYMBOLIC)
endforeach()

# qelta_provide(PACKAGE TARGET) what find_package(PACKAGE) finds is TARGET, which exists already.
function(qelta_provide package target)
  string(TOLOWER ${package} file)
  file(WRITE ${CMAKE_FIND_PACKAGE_REDIRECTS_DIR}/${file}-config.cmake "")
  if(target MATCHES ::)
    string(REPLACE "::" "_" real ${target})
    add_library(${target} ALIAS ${real})
  endif()
endfunction()

function(qelta_add_headers name)
  add_library(${name} INTERFACE)
  target_include_directories(${name} SYSTEM INTERFACE ${package_headers})
  target_compile_definitions(${name} INTERFACE ${ARGN})
endfunction()

qelta_add_headers(CLI11_CLI11)
qelta_provide(CLI11 CLI11::CLI11)
qelta_add_headers(fmt_fmt FMT_HEADER_ONLY)
qelta_provide(fmt fmt::fmt)
qelta_add_headers(nlohmann_json_nlohmann_json)
qelta_provide(nlohmann_json nlohmann_json::nlohmann_json)

file(CONFIGURE OUTPUT xxhash.c CONTENT
     "#define XXH_STATIC_LINKING_ONLY\n#define XXH_IMPLEMENTATION\n#include <xxhash.h>\n")
add_library(qelta_xxhash STATIC ${CMAKE_CURRENT_BINARY_DIR}/xxhash.c)
target_include_directories(qelta_xxhash SYSTEM PUBLIC ${package_headers})
set(XXHASH_LIBRARY qelta_xxhash CACHE INTERNAL "")

set(QELTA_SQLITE_SOURCE ${PROJECT_SOURCE_DIR}/build/windows-sqlite CACHE PATH
    "Folder that cmake/fetch-sqlite.sh has filled")
if(NOT EXISTS ${QELTA_SQLITE_SOURCE}/VERSION)
  message(FATAL_ERROR "There is no SQLite; run cmake/fetch-sqlite.sh ${QELTA_SQLITE_SOURCE}")
endif()
file(READ ${QELTA_SQLITE_SOURCE}/VERSION sqlite_version)
message(STATUS "SQLite ${sqlite_version}")
add_library(SQLite_SQLite3 STATIC ${QELTA_SQLITE_SOURCE}/sqlite3.c)
target_include_directories(SQLite_SQLite3 SYSTEM INTERFACE ${QELTA_SQLITE_SOURCE})
target_compile_options(SQLite_SQLite3 PRIVATE -w)
target_compile_definitions(SQLite_SQLite3 PRIVATE SQLITE_OMIT_LOAD_EXTENSION)
qelta_provide(SQLite3 SQLite::SQLite3)

if(QELTA_BUILD_TESTS)
  set(INSTALL_GTEST OFF)
  add_subdirectory(/usr/src/googletest ${PROJECT_BINARY_DIR}/googletest EXCLUDE_FROM_ALL)
  qelta_provide(GTest gtest)
endif()
