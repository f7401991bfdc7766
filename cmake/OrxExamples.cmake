# Packaging is tested as a user meets it: examples.install installs this tree into a temporary prefix,
# then each examples.<name> builds examples/<name> against that prefix alone, installs it there and
# runs it from an empty working directory, so it must find the installed artifacts by itself.
# examples.pkg_config builds the decisions example once more with ravo-orx-static.pc's flags.
# examples.relocated_prefix installs, moves the prefix and runs the C, C++ and Python examples of the
# shared library from it (cmake/OrxRelocatedPrefixTest.cmake).
# package.shadowing_application builds tests/shadowing_application the same way.
# The README's embedding example is compiled with the tree, so the README cannot drift from the API.

set(orx_examples decisions decision_log action_broker pixmor_transport)
set(orx_examples_work ${PROJECT_BINARY_DIR}/examples-work)
set(orx_example_script ${CMAKE_CURRENT_LIST_DIR}/OrxExampleStep.cmake)

if(ORX_SANITIZE OR ORX_FUZZ)
  # A program outside this tree would need the tree's sanitizer runtimes to link its instrumented
  # libraries; the plain tree tests the package.
  foreach(example install ${orx_examples} pkg_config relocated_prefix)
    add_test(NAME examples.${example}
      COMMAND ${CMAKE_COMMAND} -E echo "examples skipped: sanitizer build trees do not test the package")
    set_tests_properties(examples.${example} PROPERTIES SKIP_REGULAR_EXPRESSION "examples skipped")
  endforeach()
else()
  add_test(NAME examples.install
    COMMAND ${CMAKE_COMMAND} -DSTEP=install -DBUILD_DIR=${PROJECT_BINARY_DIR} -DWORK=${orx_examples_work}
            -P ${orx_example_script})
  set_tests_properties(examples.install PROPERTIES FIXTURES_SETUP orx_installed_package)
  foreach(example ${orx_examples})
    add_test(NAME examples.${example}
      COMMAND ${CMAKE_COMMAND} -DSTEP=example -DNAME=${example} -DSOURCE=${PROJECT_SOURCE_DIR}/examples/${example}
              -DWORK=${orx_examples_work} "-DGENERATOR=${CMAKE_GENERATOR}" -DMAKE_PROGRAM=${CMAKE_MAKE_PROGRAM}
              -DCXX_COMPILER=${CMAKE_CXX_COMPILER} "-DCXX_LAUNCHER=${CMAKE_CXX_COMPILER_LAUNCHER}"
              -P ${orx_example_script})
    set_tests_properties(examples.${example} PROPERTIES FIXTURES_REQUIRED orx_installed_package TIMEOUT 600)
  endforeach()
  # An application whose own names and header folders could meet ours, linking only the decisions
  # runtime; then what that program links: no application-contract dependency, no wasm2c symbol of ours
  # under its stock name.
  add_test(NAME package.shadowing_application
    COMMAND ${CMAKE_COMMAND} -DSTEP=example -DNAME=shadowing -DSOURCE=${PROJECT_SOURCE_DIR}/tests/shadowing_application
            -DWORK=${orx_examples_work} "-DGENERATOR=${CMAKE_GENERATOR}" -DMAKE_PROGRAM=${CMAKE_MAKE_PROGRAM}
            -DCXX_COMPILER=${CMAKE_CXX_COMPILER} "-DCXX_LAUNCHER=${CMAKE_CXX_COMPILER_LAUNCHER}"
            -P ${orx_example_script})
  set_tests_properties(package.shadowing_application PROPERTIES FIXTURES_REQUIRED orx_installed_package
    FIXTURES_SETUP orx_decisions_only_program TIMEOUT 600)
  set(orx_decisions_only ${orx_examples_work}/prefix/bin/orx_example_shadowing)
  add_test(NAME package.decisions_only_links_the_core_alone
    COMMAND sh -c "ldd '${orx_decisions_only}' && nm -C '${orx_decisions_only}' | grep -E ' [TDB] (wasm_rt_|nlohmann::|fmt::)' | grep -v ' T wasm_rt_trap$'; true")
  set_tests_properties(package.decisions_only_links_the_core_alone PROPERTIES
    FIXTURES_REQUIRED orx_decisions_only_program
    PASS_REGULAR_EXPRESSION "libc\\.so"
    FAIL_REGULAR_EXPRESSION "libicu|libuuid|libfmt|libnlohmann| [TDB] (wasm_rt_|nlohmann::|fmt::)")
  if(TARGET OrxSharedRuntime)
    add_test(NAME examples.relocated_prefix
      COMMAND ${CMAKE_COMMAND} -DBUILD_DIR=${PROJECT_BINARY_DIR} -DSOURCE_DIR=${PROJECT_SOURCE_DIR}
              -DWORK=${PROJECT_BINARY_DIR}/relocation-work -DLIBDIR=${CMAKE_INSTALL_LIBDIR}
              -DC_COMPILER=${CMAKE_C_COMPILER} -DCXX_COMPILER=${CMAKE_CXX_COMPILER} "-DGENERATOR=${CMAKE_GENERATOR}"
              -DMAKE_PROGRAM=${CMAKE_MAKE_PROGRAM} -DPYTHON=${ORX_PYTHON}
              -P ${CMAKE_CURRENT_LIST_DIR}/OrxRelocatedPrefixTest.cmake)
    set_tests_properties(examples.relocated_prefix PROPERTIES TIMEOUT 600)
  endif()
  add_test(NAME examples.pkg_config
    COMMAND ${CMAKE_COMMAND} -DSTEP=pkg-config -DNAME=decisions -DSOURCE=${PROJECT_SOURCE_DIR}/examples/decisions
            -DWORK=${orx_examples_work} -DLIBDIR=${CMAKE_INSTALL_LIBDIR} -DCXX_COMPILER=${CMAKE_CXX_COMPILER}
            -P ${orx_example_script})
  set_tests_properties(examples.pkg_config PROPERTIES FIXTURES_REQUIRED orx_installed_package TIMEOUT 600)
endif()

# The README's example: the C++ block after the line "<!-- embedding example -->".
file(READ ${PROJECT_SOURCE_DIR}/README.md orx_readme)
string(REGEX MATCH "<!-- embedding example -->\n```cpp\n([^`]*)```" orx_readme_block "${orx_readme}")
if(NOT CMAKE_MATCH_1)
  message(FATAL_ERROR "README.md has no C++ block after <!-- embedding example -->")
endif()
file(CONFIGURE OUTPUT ${PROJECT_BINARY_DIR}/generated/ReadmeEmbeddingExample.cpp CONTENT "${CMAKE_MATCH_1}" @ONLY)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/README.md)
add_executable(readme_embedding_example ${PROJECT_BINARY_DIR}/generated/ReadmeEmbeddingExample.cpp)
target_link_libraries(readme_embedding_example PRIVATE OrxRuntime)
add_test(NAME readme_embedding_example COMMAND readme_embedding_example WORKING_DIRECTORY ${PROJECT_SOURCE_DIR})
