# The few shapes that targets of this project have. Each takes all sources of its folder.

# clipfix_library(NAME [SUBFOLDERS folder...] [USES library...]): the library of the current folder.
# USES may only name libraries that stand above it in docs/architecture.md.
function(clipfix_library name)
  cmake_parse_arguments(ARG "" "" "SUBFOLDERS;USES" ${ARGN})
  set(patterns *.cpp *.h)
  foreach(folder IN LISTS ARG_SUBFOLDERS)
    list(APPEND patterns ${folder}/*.cpp ${folder}/*.h)
  endforeach()
  file(GLOB sources CONFIGURE_DEPENDS RELATIVE "${CMAKE_CURRENT_SOURCE_DIR}" ${patterns})
  add_library(${name} STATIC ${sources})
  set_target_properties(${name} PROPERTIES LINKER_LANGUAGE CXX)
  target_link_libraries(${name} PUBLIC clipfix_common ${ARG_USES})
endfunction()

# clipfix_test(NAME USES library...): a GoogleTest program of the current folder, known to ctest
# case by case. Its tests run in a folder of their own below the build folder.
function(clipfix_test name)
  cmake_parse_arguments(ARG "" "TIMEOUT" "USES;LABELS" ${ARGN})
  if(NOT ARG_TIMEOUT)
    set(ARG_TIMEOUT 300)
  endif()
  file(GLOB sources CONFIGURE_DEPENDS *.cpp *.h)
  add_executable(${name} ${sources})
  target_link_libraries(${name} PRIVATE clipfix_common clipfix_test_support ${ARG_USES}
    GTest::gmock GTest::gtest_main)
  target_include_directories(${name} PRIVATE "${PROJECT_SOURCE_DIR}/tests")
  # One label with commas in it: a list would lose all but its first element on the way.
  list(JOIN ARG_LABELS "," labels)
  gtest_discover_tests(${name} DISCOVERY_TIMEOUT 60 TEST_PREFIX "${name}."
    PROPERTIES TIMEOUT ${ARG_TIMEOUT} LABELS "${name},${labels}")
endfunction()

# clipfix_fuzzer(NAME SOURCE USES library...): a libFuzzer program fuzz/<NAME>.cpp.
function(clipfix_fuzzer name)
  cmake_parse_arguments(ARG "" "" "USES" ${ARGN})
  add_executable(${name} ${name}.cpp)
  target_link_libraries(${name} PRIVATE clipfix_common ${ARG_USES})
  target_compile_options(${name} PRIVATE -fsanitize=fuzzer)
  target_link_options(${name} PRIVATE -fsanitize=fuzzer)
endfunction()
