# Libraries are called NAME.dll, and all of them are in one folder with the programs, which find
# them there, as after the installation.
set(CMAKE_SHARED_LIBRARY_PREFIX "")
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/bin)

# The compiler's own libraries go with ours: failures are thrown from one library to another.
if(CMAKE_CROSSCOMPILING)
  include(QeltaCrossPackages)
  set(runtime libstdc++-6 libgcc_s_seh-1 libwinpthread-1)
  if(QELTA_BUILD_FORTRAN)
    list(APPEND runtime libgfortran-5 libquadmath-0)
  endif()
  foreach(name IN LISTS runtime)
    execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${name}.dll
                    OUTPUT_VARIABLE file OUTPUT_STRIP_TRAILING_WHITESPACE)
    set(copy ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/${name}.dll)
    if(${file} IS_NEWER_THAN ${copy})
      file(MAKE_DIRECTORY ${CMAKE_RUNTIME_OUTPUT_DIRECTORY})
      execute_process(COMMAND ${CMAKE_STRIP} -o ${copy} ${file} COMMAND_ERROR_IS_FATAL ANY)
    endif()
    if(QELTA_INSTALL)
      install(FILES ${copy} DESTINATION ${CMAKE_INSTALL_BINDIR})
    endif()
  endforeach()
endif()
