# The flat entry points of the DLLs for programs of other compilers: NAME.def, of which their tools
# make an import library, and QeltaEntryPoints.dll, which has all of them and needs no other DLL.
foreach(dll QeltaDbConnector QeltaFortran)
  target_link_options(${dll} PRIVATE -Wl,--output-def,${PROJECT_BINARY_DIR}/${dll}-all.def)
endforeach()

# qelta_write_definitions(NAME DLL...)
function(qelta_write_definitions name)
  list(TRANSFORM ARGN REPLACE "(.+)" "${PROJECT_BINARY_DIR}/\\1-all.def" OUTPUT_VARIABLE exports)
  set(script ${PROJECT_SOURCE_DIR}/cmake/WriteDefinitions.cmake)
  set(definitions ${PROJECT_BINARY_DIR}/${name}.def)
  add_custom_command(OUTPUT ${definitions} VERBATIM
    COMMAND ${CMAKE_COMMAND} "-DFROM=${exports}" -DTO=${definitions} -P ${script}
    DEPENDS ${ARGN} ${script})
  add_custom_target(${name}_definitions ALL DEPENDS ${definitions})
  if(QELTA_INSTALL)
    install(FILES ${definitions} DESTINATION ${CMAKE_INSTALL_LIBDIR})
  endif()
endfunction()
qelta_write_definitions(QeltaDbConnector QeltaDbConnector)
qelta_write_definitions(QeltaFortran QeltaFortran)
qelta_write_definitions(QeltaEntryPoints QeltaDbConnector QeltaFortran)

# It is linked of the objects of the other DLLs.
get_property(layers GLOBAL PROPERTY QELTA_LAYERS)
add_library(qelta_joined_objects STATIC)
foreach(part IN LISTS layers ITEMS QeltaStorage QeltaMemoryStorage qelta_file_storage QeltaFortran)
  target_sources(qelta_joined_objects PRIVATE $<TARGET_OBJECTS:${part}>)
endforeach()
set_target_properties(qelta_joined_objects PROPERTIES LINKER_LANGUAGE CXX)

set(folder ${PROJECT_BINARY_DIR}/entry_points)
file(MAKE_DIRECTORY ${folder})
set(objects ${folder}/libqelta_joined_objects.a)
set(io ${folder}/libQeltaIo.a)
set(without_imports ${CMAKE_CURRENT_LIST_DIR}/without-imports.sh)
add_custom_command(OUTPUT ${objects} ${io} ${folder}/imports.o VERBATIM
  COMMAND ${without_imports} ${CMAKE_OBJCOPY} ${CMAKE_NM} ${CMAKE_C_COMPILER} ${folder}
          $<TARGET_FILE:qelta_joined_objects> $<TARGET_FILE:QeltaIo>
  DEPENDS qelta_joined_objects QeltaIo ${without_imports})

add_library(QeltaEntryPoints SHARED ${PROJECT_BINARY_DIR}/QeltaEntryPoints.def ${folder}/imports.o)
add_dependencies(QeltaEntryPoints QeltaEntryPoints_definitions)
set_target_properties(QeltaEntryPoints PROPERTIES
  LINKER_LANGUAGE CXX LINK_DEPENDS "${objects};${io}")
target_link_options(QeltaEntryPoints PRIVATE -static -s)
target_link_libraries(QeltaEntryPoints PRIVATE
  -Wl,--whole-archive ${objects} -Wl,--no-whole-archive ${io} SQLite::SQLite3 ${XXHASH_LIBRARY})
if(QELTA_INSTALL)
  install(TARGETS QeltaEntryPoints)
endif()
