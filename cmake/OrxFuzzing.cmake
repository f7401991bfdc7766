# orx_add_fuzzer(NAME SOURCES ... LIBRARIES ... CORPUS dir)
# A libFuzzer target (clang only, ORX_FUZZ=ON). ctest runs it for ORX_FUZZ_SECONDS on a scratch copy
# of its committed seed corpus, so bounded runs never write into the source tree.
add_custom_target(orx_fuzzers)
set(ORX_FUZZ_SECONDS 30 CACHE STRING "Seconds each fuzz target runs under ctest")

function(orx_add_fuzzer name)
  if(NOT ORX_FUZZ)
    return()
  endif()
  cmake_parse_arguments(ARG "" "CORPUS" "SOURCES;LIBRARIES" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE ${ARG_LIBRARIES})
  target_link_options(${name} PRIVATE -fsanitize=fuzzer)
  add_dependencies(orx_fuzzers ${name})
  set(work ${CMAKE_BINARY_DIR}/fuzz-work/${name})
  add_test(NAME ${name}
    COMMAND ${CMAKE_COMMAND} -E env ASAN_OPTIONS=detect_leaks=1
            sh -c "rm -rf '${work}' && mkdir -p '${work}' && cp -r '${ARG_CORPUS}/.' '${work}/' && \
                   exec '$<TARGET_FILE:${name}>' -max_total_time=${ORX_FUZZ_SECONDS} -print_final_stats=1 \
                   -rss_limit_mb=4096 '${work}'")
  set_tests_properties(${name} PROPERTIES LABELS fuzz TIMEOUT 600)
endfunction()
