# Installs the packages of package-lock.json in the current folder: cmake -DNPM=... -P fetch.cmake
execute_process(COMMAND ${NPM} ci --omit=dev --ignore-scripts --no-audit --no-fund --loglevel=error
                RESULT_VARIABLE state)
if(NOT state EQUAL 0)
  message(FATAL_ERROR "npm cannot fetch the packages of the report. Check the registry that npm "
                      "uses, or configure with -DQELTA_REPORT=OFF to build a tool without it.")
endif()
