# One interface target carries the language level, the warnings and the sanitizers for every target.

set_property(GLOBAL PROPERTY GLOBAL_DEPENDS_NO_CYCLES ON)
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/bin")

add_library(clipfix_common INTERFACE)
target_compile_options(clipfix_common INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wnon-virtual-dtor
  -Wold-style-cast -Woverloaded-virtual -Werror)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  # GCC 12 sees overlapping copies in optimised assignments of one-letter strings (its bug 105651).
  target_compile_options(clipfix_common INTERFACE -Wno-restrict)
endif()
target_compile_definitions(clipfix_common INTERFACE _FILE_OFFSET_BITS=64
  CLIPFIX_VERSION="${PROJECT_VERSION}")
target_include_directories(clipfix_common INTERFACE "${PROJECT_SOURCE_DIR}/src")

if(CLIPFIX_SANITIZE)
  target_compile_options(clipfix_common INTERFACE
    -fsanitize=${CLIPFIX_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # Instrumented code hides from GCC that the members of std::function are set.
    target_compile_options(clipfix_common INTERFACE -Wno-maybe-uninitialized)
  endif()
  target_link_options(clipfix_common INTERFACE -fsanitize=${CLIPFIX_SANITIZE})
endif()

# The libraries under a fuzz target tell the fuzzer which of their branches an input has reached.
if(CLIPFIX_FUZZ_GUIDED)
  target_compile_options(clipfix_common INTERFACE -fsanitize=fuzzer-no-link)
endif()

find_program(CLIPFIX_CCACHE ccache)
if(CLIPFIX_CCACHE)
  set(CMAKE_CXX_COMPILER_LAUNCHER "${CLIPFIX_CCACHE}")
endif()
