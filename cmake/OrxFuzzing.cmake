# orx_add_fuzzer(NAME SOURCES ... LIBRARIES ... CORPUS dir [TIMEOUT seconds] [RSS_LIMIT_MB megabytes])
# A libFuzzer target (clang only, ORX_FUZZ=ON). An input slower than TIMEOUT (default 25 s) or a
# process grown past RSS_LIMIT_MB (default 4096) is a finding, like a crash. ctest runs it for ORX_FUZZ_SECONDS on a copy of its
# committed seed corpus inside the build tree, so fuzzing never writes into the source tree.
add_custom_target(orx_fuzzers)
set(ORX_FUZZ_SECONDS 30 CACHE STRING "Seconds each fuzz target runs under ctest")

function(orx_add_fuzzer name)
  if(NOT ORX_FUZZ)
    return()
  endif()
  cmake_parse_arguments(ARG "" "CORPUS;TIMEOUT;RSS_LIMIT_MB" "SOURCES;LIBRARIES" ${ARGN})
  if(NOT ARG_TIMEOUT)
    set(ARG_TIMEOUT 25)
  endif()
  if(NOT ARG_RSS_LIMIT_MB)
    set(ARG_RSS_LIMIT_MB 4096)
  endif()
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE ${ARG_LIBRARIES})
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR})
  target_link_options(${name} PRIVATE -fsanitize=fuzzer)
  add_dependencies(orx_fuzzers ${name})
  set(work ${CMAKE_BINARY_DIR}/fuzz-work/${name})
  # The committed seeds are copied into a working corpus that grows between runs of this build tree;
  # reproducers go to findings/ and libFuzzer's report to fuzz.log (its last lines are shown).
  add_test(NAME ${name}
    COMMAND ${CMAKE_COMMAND} -E env ASAN_OPTIONS=detect_leaks=1
            sh -c "mkdir -p '${work}/corpus' '${work}/findings' && cp -r '${ARG_CORPUS}/.' '${work}/corpus/' && \
                   '$<TARGET_FILE:${name}>' -max_total_time=${ORX_FUZZ_SECONDS} -print_final_stats=1 \
                   -timeout=${ARG_TIMEOUT} -rss_limit_mb=${ARG_RSS_LIMIT_MB} -artifact_prefix='${work}/findings/' '${work}/corpus' \
                   >'${work}/fuzz.log' 2>&1; status=$?; tail -n 30 '${work}/fuzz.log'; exit $status")
  math(EXPR timeout "${ORX_FUZZ_SECONDS} + 300")
  set_tests_properties(${name} PROPERTIES LABELS fuzz TIMEOUT ${timeout})
endfunction()
