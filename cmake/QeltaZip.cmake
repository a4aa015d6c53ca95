# The package for Windows: what is installed, with the licences of all that is in it.
install(FILES ${PROJECT_SOURCE_DIR}/LICENSE ${PROJECT_SOURCE_DIR}/docs/windows.md DESTINATION .)
foreach(package libxxhash-dev libfmt-dev libcli11-dev nlohmann-json3-dev libsqlite3-dev
                libz-mingw-w64-dev gcc-mingw-w64-base mingw-w64-x86-64-dev)
  install(FILES /usr/share/doc/${package}/copyright DESTINATION licences
          RENAME ${package}.txt OPTIONAL)
endforeach()

set(CPACK_GENERATOR ZIP)
set(CPACK_PACKAGE_FILE_NAME QeltaDbConnector-${PROJECT_VERSION}-windows-x86-64)
include(CPack)
