# orx_add_test(NAME SOURCES ... LIBRARIES ... [LABELS ...])
# One GoogleTest executable; its cases are discovered when ctest runs, so building never runs tests.
# The label "concurrency" marks suites that the test command also runs under ThreadSanitizer; the
# target orx_concurrency_tests builds exactly those.
add_custom_target(orx_concurrency_tests)

# One precompiled header of the test frameworks, reused by every test executable: parsing GoogleTest,
# GoogleMock and nlohmann-json dominates the build otherwise.
add_library(orx_test_pch OBJECT ${CMAKE_CURRENT_LIST_DIR}/OrxTestPch.cpp)
target_link_libraries(orx_test_pch PRIVATE GTest::gmock GTest::gtest nlohmann_json::nlohmann_json)
target_precompile_headers(orx_test_pch PRIVATE
  <gmock/gmock.h> <gtest/gtest.h> <nlohmann/json.hpp> <functional> <map> <optional> <string> <vector>)

function(orx_add_test name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LIBRARIES;LABELS" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE ${ARG_LIBRARIES} GTest::gmock GTest::gtest_main)
  # A test's own helper headers are included from the repository root ("runtime/tests/PuppetModules.h").
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR})
  target_precompile_headers(${name} REUSE_FROM orx_test_pch)
  gtest_discover_tests(${name}
    DISCOVERY_MODE PRE_TEST
    WORKING_DIRECTORY ${PROJECT_SOURCE_DIR}
    PROPERTIES LABELS "${ARG_LABELS}")
  if("concurrency" IN_LIST ARG_LABELS)
    add_dependencies(orx_concurrency_tests ${name})
  endif()
endfunction()
