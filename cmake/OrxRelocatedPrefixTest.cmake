# The shared library as applications in four languages meet it after the prefix moved: run by ctest as
#   cmake -DBUILD_DIR= -DSOURCE_DIR= -DWORK= -DLIBDIR= -DC_COMPILER= -DCXX_COMPILER= -DGENERATOR=
#         -DMAKE_PROGRAM= -DPYTHON= -P OrxRelocatedPrefixTest.cmake
# It installs the build tree into WORK/installed, moves that prefix to WORK/moved, then builds and runs,
# from an empty working directory and naming no artifacts directory: examples/c_api linked by hand
# (-I -L -l) and again with `pkg-config --cflags --libs ravo-orx` (shared, no --static),
# examples/shared_library through find_package(RavoORX), and examples/python with the installed
# module. Each must take all three decisions from the policy modules and print the same lines, the
# domain digest included; the C program must need none of nlohmann, ICU, libuuid, fmt or wabt.

function(run output_variable)
  execute_process(COMMAND ${ARGN} WORKING_DIRECTORY ${empty} RESULT_VARIABLE status OUTPUT_VARIABLE output
    ERROR_VARIABLE errors)
  if(NOT status EQUAL 0)
    message(FATAL_ERROR "failed (${status}): ${ARGN}\n${output}${errors}")
  endif()
  set(${output_variable} "${output}" PARENT_SCOPE)
endfunction()

set(installed ${WORK}/installed)
set(moved ${WORK}/moved)
set(empty ${WORK}/empty)
file(REMOVE_RECURSE ${WORK})
file(MAKE_DIRECTORY ${empty})
run(ignored ${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${installed})
file(RENAME ${installed} ${moved})
set(libdir ${moved}/${LIBDIR})

run(ignored ${C_COMPILER} ${SOURCE_DIR}/examples/c_api/main.c -I${moved}/include -L${libdir} -lravo-orx
  -Wl,-rpath,${libdir} -o ${WORK}/c_api)
run(by_hand ${WORK}/c_api)

set(ENV{PKG_CONFIG_PATH} ${libdir}/pkgconfig)
run(flags pkg-config --cflags --libs ravo-orx)
run(pkgconfig_libdir pkg-config --variable=libdir ravo-orx)
string(STRIP "${flags}" flags)
string(STRIP "${pkgconfig_libdir}" pkgconfig_libdir)
separate_arguments(flags UNIX_COMMAND "${flags}")
run(ignored ${C_COMPILER} ${SOURCE_DIR}/examples/c_api/main.c ${flags} -Wl,-rpath,${pkgconfig_libdir}
  -o ${WORK}/c_api_pkg_config)
run(through_pkg_config ${WORK}/c_api_pkg_config)

run(needed ldd ${WORK}/c_api)
if(needed MATCHES "nlohmann|libicu|libuuid|libfmt|libwabt")
  message(FATAL_ERROR "the C program needs more than the C and C++ runtimes:\n${needed}")
endif()

run(ignored ${CMAKE_COMMAND} -S ${SOURCE_DIR}/examples/shared_library -B ${WORK}/build-cpp -G ${GENERATOR}
  -DCMAKE_MAKE_PROGRAM=${MAKE_PROGRAM} -DCMAKE_BUILD_TYPE=Release -DCMAKE_CXX_COMPILER=${CXX_COMPILER}
  -DCMAKE_PREFIX_PATH=${moved} -DCMAKE_FIND_USE_PACKAGE_REGISTRY=OFF)
run(ignored ${CMAKE_COMMAND} --build ${WORK}/build-cpp)
run(cpp ${WORK}/build-cpp/orx_example_shared_library)

set(ENV{PYTHONPATH} ${moved}/lib/python3/dist-packages)
run(python ${PYTHON} ${SOURCE_DIR}/examples/python/decisions.py)

foreach(other by_hand through_pkg_config python)
  if(NOT "${${other}}" STREQUAL "${cpp}")
    message(FATAL_ERROR "${other} printed\n${${other}}\nwhere C++ printed\n${cpp}")
  endif()
endforeach()
message(STATUS "all four printed:\n${cpp}")
