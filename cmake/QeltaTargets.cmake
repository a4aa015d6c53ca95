# qelta_add_layer(NAME SOURCES ... HEADERS ... USES ...)
# A layer of the core: an object library that sees only the layers it uses. HEADERS are public,
# they are installed.
function(qelta_add_layer name)
  cmake_parse_arguments(ARG "" "" "SOURCES;HEADERS;USES" ${ARGN})
  add_library(${name} OBJECT ${ARG_SOURCES})
  target_include_directories(${name} PUBLIC ${CMAKE_CURRENT_SOURCE_DIR})
  target_link_libraries(${name} PUBLIC ${ARG_USES} PRIVATE qelta_build_flags)
  target_compile_definitions(${name} PRIVATE QELTA_BUILDING)
  if(NOT QELTA_SHARED)
    target_compile_definitions(${name} PUBLIC QELTA_STATIC)
  endif()
  set_property(GLOBAL APPEND PROPERTY QELTA_LAYERS ${name})
  set_property(GLOBAL APPEND PROPERTY QELTA_LAYER_FOLDERS ${CMAKE_CURRENT_SOURCE_DIR})
  qelta_public_headers(${ARG_HEADERS})
endfunction()

# qelta_install_with(COMPONENT TARGETS...): the targets belong to this component of the package.
function(qelta_install_with component)
  get_property(components GLOBAL PROPERTY QELTA_COMPONENTS)
  if(NOT component IN_LIST components)
    set_property(GLOBAL APPEND PROPERTY QELTA_COMPONENTS ${component})
  endif()
  set_property(GLOBAL APPEND PROPERTY QELTA_COMPONENT_${component} ${ARGN})
endfunction()

function(qelta_public_headers)
  list(TRANSFORM ARGN PREPEND ${CMAKE_CURRENT_SOURCE_DIR}/)
  set_property(GLOBAL APPEND PROPERTY QELTA_PUBLIC_HEADERS ${ARGN})
endfunction()

# Shows what the map lists, nothing else.
function(qelta_limit_exports name map)
  if(NOT QELTA_SHARED OR WIN32)
    return()
  endif()
  set(map ${PROJECT_SOURCE_DIR}/cmake/${map})
  target_link_options(${name} PRIVATE -Wl,--version-script=${map})
  if(NOT QELTA_SANITIZE)
    # The sanitizers' run time is in the program, not in the library.
    target_link_options(${name} PRIVATE -Wl,--no-undefined)
  endif()
  set_property(TARGET ${name} APPEND PROPERTY LINK_DEPENDS ${map})
endfunction()

# The one library that holds the core, Qelta::DbConnector, and the interface targets that name its
# platform modules.
function(qelta_add_core_library)
  get_property(layers GLOBAL PROPERTY QELTA_LAYERS)
  get_property(folders GLOBAL PROPERTY QELTA_LAYER_FOLDERS)
  add_library(QeltaDbConnector ${QELTA_LIBRARY_TYPE})
  foreach(layer IN LISTS layers)
    target_sources(QeltaDbConnector PRIVATE $<TARGET_OBJECTS:${layer}>)
  endforeach()
  set_target_properties(QeltaDbConnector PROPERTIES
    LINKER_LANGUAGE CXX EXPORT_NAME DbConnector
    VERSION ${PROJECT_VERSION} SOVERSION ${QELTA_SOVERSION})
  target_compile_features(QeltaDbConnector PUBLIC cxx_std_17)
  target_link_libraries(QeltaDbConnector PRIVATE $<BUILD_INTERFACE:qelta_build_flags>)
  target_include_directories(QeltaDbConnector INTERFACE
    "$<BUILD_INTERFACE:${folders}>"
    $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/QeltaDbConnector>)
  if(NOT QELTA_SHARED)
    target_compile_definitions(QeltaDbConnector INTERFACE QELTA_STATIC)
  endif()
  qelta_limit_exports(QeltaDbConnector QeltaDbConnector.map)
  add_library(Qelta::DbConnector ALIAS QeltaDbConnector)
  foreach(module Utilities OnfSpecification IdMaps)
    add_library(Qelta${module} INTERFACE)
    target_link_libraries(Qelta${module} INTERFACE QeltaDbConnector)
    set_target_properties(Qelta${module} PROPERTIES EXPORT_NAME ${module})
    add_library(Qelta::${module} ALIAS Qelta${module})
  endforeach()
  qelta_install_with(Core QeltaDbConnector QeltaUtilities QeltaOnfSpecification QeltaIdMaps)
endfunction()

# qelta_add_module(NAME EXPORT_NAME ... COMPONENT ... BUILDING macro SOURCES ... HEADERS ... USES ...)
# A library of its own above the core, Qelta::<EXPORT_NAME>, in a component of the package. BUILDING
# is the macro that tells its headers that it is being built.
function(qelta_add_module name)
  cmake_parse_arguments(ARG "" "EXPORT_NAME;COMPONENT;BUILDING" "SOURCES;HEADERS;USES" ${ARGN})
  add_library(${name} ${QELTA_LIBRARY_TYPE} ${ARG_SOURCES})
  # Installed libraries find one another beside themselves.
  set_target_properties(${name} PROPERTIES EXPORT_NAME ${ARG_EXPORT_NAME}
    VERSION ${PROJECT_VERSION} SOVERSION ${QELTA_SOVERSION} INSTALL_RPATH "$ORIGIN")
  target_include_directories(${name}
    PUBLIC $<BUILD_INTERFACE:${CMAKE_CURRENT_SOURCE_DIR}>
           $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/QeltaDbConnector>)
  target_link_libraries(${name} PUBLIC ${ARG_USES} PRIVATE $<BUILD_INTERFACE:qelta_build_flags>)
  target_compile_definitions(${name} PRIVATE ${ARG_BUILDING})
  qelta_limit_exports(${name} QeltaModule.map)
  add_library(Qelta::${ARG_EXPORT_NAME} ALIAS ${name})
  qelta_install_with(${ARG_COMPONENT} ${name})
  qelta_public_headers(${ARG_HEADERS})
endfunction()

# qelta_static_module(TARGET EXPORT_NAME COMPONENT): a static library is Qelta::<EXPORT_NAME>, finds its
# headers in its folder and is installed with a component.
function(qelta_static_module name export_name component)
  set_target_properties(${name} PROPERTIES EXPORT_NAME ${export_name})
  target_include_directories(${name}
    PUBLIC $<BUILD_INTERFACE:${CMAKE_CURRENT_SOURCE_DIR}>
           $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/QeltaDbConnector>)
  add_library(Qelta::${export_name} ALIAS ${name})
  qelta_install_with(${component} ${name})
endfunction()

# qelta_runner(VARIABLE TARGET [FILTER]) what a shell script calls to run a program, which may be one
# of another system; FILTER is what it prints led through then.
function(qelta_runner variable target)
  if(CMAKE_CROSSCOMPILING)
    set(runner ${CMAKE_CURRENT_BINARY_DIR}/run-${target})
    list(JOIN CMAKE_CROSSCOMPILING_EMULATOR " " emulator)
    list(JOIN ARGN " " filter)
    if(NOT filter)
      set(filter cat)
    endif()
    file(GENERATE OUTPUT ${runner} CONTENT "#!/bin/bash
{ ${emulator} $<TARGET_FILE:${target}> \"$@\" 2>&1 >&4 | sed '/^wine: /d; s/\\r$//' >&2
  exit \${PIPESTATUS[0]}
} 4>&1 | ${filter}
exit \${PIPESTATUS[0]}
"
      FILE_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE)
    set(${variable} ${runner} PARENT_SCOPE)
  else()
    set(${variable} $<TARGET_FILE:${target}> PARENT_SCOPE)
  endif()
endfunction()

# qelta_add_test(NAME SOURCES ... LIBS ... ENVIRONMENT ...)
function(qelta_add_test name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LIBS;ENVIRONMENT" ${ARGN})
  if(name IN_LIST QELTA_LEFT_OUT_PROGRAMS)
    return()
  endif()
  list(REMOVE_ITEM ARG_SOURCES "" ${QELTA_LEFT_OUT_SOURCES})
  list(JOIN QELTA_LEFT_OUT_${name} : left_out)
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE
    ${ARG_LIBS} Qelta::DbConnector qelta_test_kit GTest::gmock GTest::gtest_main qelta_build_flags)
  add_test(NAME ${name} COMMAND ${name} --gtest_filter=-${left_out})
  set_tests_properties(${name} PROPERTIES ENVIRONMENT "${ARG_ENVIRONMENT}" TIMEOUT 300)
endfunction()
