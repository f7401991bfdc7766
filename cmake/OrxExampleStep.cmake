# One step of the package test, run by ctest as `cmake -DSTEP=... -P OrxExampleStep.cmake`:
#   STEP=install  BUILD_DIR WORK: installs the build tree into WORK/prefix, replacing any earlier one.
#   STEP=example  NAME SOURCE WORK GENERATOR MAKE_PROGRAM CXX_COMPILER [CXX_LAUNCHER]: configures
#                 SOURCE against WORK/prefix alone, builds it, installs it into WORK/prefix and runs
#                 WORK/prefix/bin/orx_example_NAME from an empty working directory.
#   STEP=pkg-config  NAME SOURCE WORK LIBDIR CXX_COMPILER: compiles SOURCE/main.cpp with the flags of
#                 `pkg-config --cflags --libs --static ravo-orx-static` into WORK/prefix/bin and runs it the
#                 same way.

function(run)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE status OUTPUT_VARIABLE output ERROR_VARIABLE output)
  if(NOT status EQUAL 0)
    message(FATAL_ERROR "failed (${status}): ${ARGN}\n${output}")
  endif()
endfunction()

set(prefix ${WORK}/prefix)
if(STEP STREQUAL "install")
  file(REMOVE_RECURSE ${prefix})
  run(${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${prefix})
  return()
endif()

set(program orx_example_${NAME})
if(STEP STREQUAL "pkg-config")
  set(program orx_example_${NAME}_pkg_config)
endif()
set(elsewhere ${WORK}/run-${program})
file(REMOVE_RECURSE ${elsewhere})
file(MAKE_DIRECTORY ${elsewhere})
if(STEP STREQUAL "pkg-config")
  set(ENV{PKG_CONFIG_PATH} ${prefix}/${LIBDIR}/pkgconfig)
  execute_process(COMMAND pkg-config --cflags --libs --static ravo-orx-static
    OUTPUT_VARIABLE flags OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
  separate_arguments(flags UNIX_COMMAND "${flags}")
  run(${CXX_COMPILER} ${SOURCE}/main.cpp -o ${prefix}/bin/${program} ${flags})
else()
  set(build ${WORK}/build-${NAME})
  file(REMOVE_RECURSE ${build})
  set(launcher)
  if(CXX_LAUNCHER)
    set(launcher -DCMAKE_CXX_COMPILER_LAUNCHER=${CXX_LAUNCHER})
  endif()
  run(${CMAKE_COMMAND} -S ${SOURCE} -B ${build} -G ${GENERATOR} -DCMAKE_MAKE_PROGRAM=${MAKE_PROGRAM}
      -DCMAKE_BUILD_TYPE=Release -DCMAKE_CXX_COMPILER=${CXX_COMPILER} ${launcher}
      -DCMAKE_PREFIX_PATH=${prefix} -DCMAKE_INSTALL_PREFIX=${prefix} -DCMAKE_FIND_USE_PACKAGE_REGISTRY=OFF)
  run(${CMAKE_COMMAND} --build ${build})
  run(${CMAKE_COMMAND} --install ${build})
endif()
execute_process(COMMAND ${prefix}/bin/${program} WORKING_DIRECTORY ${elsewhere} RESULT_VARIABLE status)
if(NOT status EQUAL 0)
  message(FATAL_ERROR "${program} exited with ${status}")
endif()
