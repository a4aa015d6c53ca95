# Writes the flat entry points of DLLs as a module-definition file, of which the tools of any
# compiler make an import library: cmake -DFROM=a.def;b.def -DTO=NAME.def -P WriteDefinitions.cmake
foreach(file IN LISTS FROM)
  file(STRINGS ${file} found REGEX "^ +[A-Za-z]+_[A-Za-z0-9_]+_F ")
  list(APPEND names ${found})
endforeach()
list(TRANSFORM names REPLACE "^ +([^ ]+) .*" "  \\1")
list(JOIN names "\n" names)
cmake_path(GET TO STEM name)
file(WRITE ${TO} "LIBRARY ${name}.dll\nEXPORTS\n${names}\n")
