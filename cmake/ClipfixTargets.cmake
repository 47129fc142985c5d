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

# clipfix_test(NAME USES library...): a GoogleTest program of the current folder. ctest knows it as a
# whole: a process for each of its tests would take longer to start than most of them to run. Those
# with the highest COST, about their seconds, are begun first; SHARDS parts may run side by side.
function(clipfix_test name)
  cmake_parse_arguments(ARG "" "TIMEOUT;COST;SHARDS" "USES;LABELS" ${ARGN})
  if(NOT ARG_TIMEOUT)
    set(ARG_TIMEOUT 600)
  endif()
  if(NOT ARG_COST)
    set(ARG_COST 0)
  endif()
  if(NOT ARG_SHARDS)
    set(ARG_SHARDS 1)
  endif()
  file(GLOB sources CONFIGURE_DEPENDS *.cpp *.h)
  add_executable(${name} ${sources})
  target_link_libraries(${name} PRIVATE clipfix_common clipfix_test_support ${ARG_USES}
    GTest::gmock GTest::gtest_main)
  target_include_directories(${name} PRIVATE "${PROJECT_SOURCE_DIR}/tests")
  foreach(shard RANGE 1 ${ARG_SHARDS})
    set(case ${name})
    if(ARG_SHARDS GREATER 1)
      set(case ${name}.${shard})
    endif()
    math(EXPR index "${shard} - 1")
    add_test(NAME ${case} COMMAND ${name} --gtest_brief=1)
    set_tests_properties(${case} PROPERTIES TIMEOUT ${ARG_TIMEOUT} COST ${ARG_COST}
      LABELS "${ARG_LABELS}"
      ENVIRONMENT "GTEST_TOTAL_SHARDS=${ARG_SHARDS};GTEST_SHARD_INDEX=${index}")
  endforeach()
endfunction()

# clipfix_fuzzer(NAME SOURCE USES library...): a libFuzzer program fuzz/<NAME>.cpp.
function(clipfix_fuzzer name)
  cmake_parse_arguments(ARG "" "" "USES" ${ARGN})
  add_executable(${name} ${name}.cpp)
  target_link_libraries(${name} PRIVATE clipfix_common ${ARG_USES})
  target_compile_options(${name} PRIVATE -fsanitize=fuzzer)
  target_link_options(${name} PRIVATE -fsanitize=fuzzer)
endfunction()
