# Qelta::FortranModule, module qelta, and how Fortran programs of this project are built.
add_library(qelta_fortran_flags INTERFACE)
if(CMAKE_Fortran_COMPILER_ID STREQUAL GNU)
  target_compile_options(qelta_fortran_flags INTERFACE
    $<$<COMPILE_LANGUAGE:Fortran>:-std=f2008;-Wall;-Wextra>
    $<$<AND:$<COMPILE_LANGUAGE:Fortran>,$<BOOL:${QELTA_WARNINGS_AS_ERRORS}>>:-Werror>)
endif()

set(sources qelta_kinds.f90 qelta_bindings.f90 qelta_id_bindings.f90 qelta_failures.f90
            qelta_handles.f90 qelta_fields.f90 qelta_keys.f90 qelta_records.f90 qelta_blocks.f90
            qelta_id_records.f90 qelta_id_views.f90 qelta_databases.f90 qelta.f90)
set(modules ${CMAKE_CURRENT_BINARY_DIR}/modules)
add_library(QeltaFortranModule ${QELTA_LIBRARY_TYPE} ${sources})
set_target_properties(QeltaFortranModule PROPERTIES
  EXPORT_NAME FortranModule Fortran_MODULE_DIRECTORY ${modules} INSTALL_RPATH $ORIGIN
  VERSION ${PROJECT_VERSION} SOVERSION ${QELTA_SOVERSION})
target_include_directories(QeltaFortranModule
  PUBLIC $<BUILD_INTERFACE:${modules}>
         $<INSTALL_INTERFACE:${CMAKE_INSTALL_LIBDIR}/${QELTA_FORTRAN_MODULES}>)
target_link_libraries(QeltaFortranModule PUBLIC QeltaFortran
  PRIVATE $<BUILD_INTERFACE:qelta_fortran_flags>)
add_library(Qelta::FortranModule ALIAS QeltaFortranModule)

qelta_install_with(Fortran QeltaFortranModule)
if(QELTA_INSTALL)
  install(DIRECTORY ${modules}/ DESTINATION ${CMAKE_INSTALL_LIBDIR}/${QELTA_FORTRAN_MODULES}
          COMPONENT Fortran)
  install(FILES ${sources} DESTINATION ${CMAKE_INSTALL_DATADIR}/QeltaDbConnector/fortran
          COMPONENT Fortran)
endif()

# qelta_add_fortran_program(NAME SOURCE ...)
function(qelta_add_fortran_program name)
  add_executable(${name} ${ARGN})
  set_target_properties(${name} PROPERTIES
    Fortran_MODULE_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR}/${name}.modules)
  target_link_libraries(${name} PRIVATE QeltaFortranModule qelta_fortran_flags)
  if(QELTA_SANITIZE)
    # The libraries need the run time of the C++ compiler's sanitizers, so that compiler links.
    set_target_properties(${name} PROPERTIES LINKER_LANGUAGE CXX)
    target_link_options(${name} PRIVATE -fsanitize=${QELTA_SANITIZE})
  endif()
endfunction()
