# orx_add_test(NAME SOURCES ... LIBRARIES ... [LABELS ...])
# One GoogleTest executable; its cases are discovered when ctest runs, so building never runs tests.
# The label "concurrency" marks suites that the test command also runs under ThreadSanitizer; the
# target orx_concurrency_tests builds exactly those.
add_custom_target(orx_concurrency_tests)

function(orx_add_test name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LIBRARIES;LABELS" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE ${ARG_LIBRARIES} GTest::gmock GTest::gtest_main)
  gtest_discover_tests(${name}
    DISCOVERY_MODE PRE_TEST
    WORKING_DIRECTORY ${PROJECT_SOURCE_DIR}
    PROPERTIES LABELS "${ARG_LABELS}")
  if("concurrency" IN_LIST ARG_LABELS)
    add_dependencies(orx_concurrency_tests ${name})
  endif()
endfunction()
