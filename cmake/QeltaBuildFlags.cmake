# qelta_build_flags: what every target of this project is compiled with.
add_library(qelta_build_flags INTERFACE)
target_compile_features(qelta_build_flags INTERFACE cxx_std_17)
target_compile_options(qelta_build_flags INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wsign-conversion -Wshadow -Wold-style-cast
  -Wnon-virtual-dtor -Woverloaded-virtual
  $<$<BOOL:${QELTA_WARNINGS_AS_ERRORS}>:-Werror>)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  # Nobody replaces single functions of the libraries at run time, so exported ones may be inlined.
  target_compile_options(qelta_build_flags INTERFACE -fno-semantic-interposition)
endif()
if(QELTA_SANITIZE)
  target_compile_options(qelta_build_flags INTERFACE
    -fsanitize=${QELTA_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(qelta_build_flags INTERFACE -fsanitize=${QELTA_SANITIZE})
endif()

set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
if(QELTA_SHARED)
  set(QELTA_LIBRARY_TYPE SHARED)
else()
  set(QELTA_LIBRARY_TYPE STATIC)
endif()
