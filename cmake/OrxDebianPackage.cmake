# Debian packages, one per install component, built by `cpack` in a tree configured for the system
# prefix (scripts/package has the one command):
#   libravo-orx1       the shared library and the policy artifacts it loads
#   libravo-orx-dev    headers, static archives, the library's link name, CMake and pkg-config files
#   ravo-orx-tools     ravo-orx and RavoORXChecks
#   python3-ravo-orx   the Python binding
# Each gets Debian's copyright file and changelog in /usr/share/doc/<package>/; binaries are stripped.
set(CPACK_PACKAGE_NAME ravo-orx)
set(CPACK_PACKAGE_VENDOR Ravo)
set(CPACK_PACKAGE_CONTACT "Ravo ORX maintainers <orx@ravo.example.org>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Ravo ORX decision core")
set(CPACK_RESOURCE_FILE_LICENSE ${PROJECT_SOURCE_DIR}/LICENSE)
set(CPACK_PACKAGING_INSTALL_PREFIX ${CMAKE_INSTALL_PREFIX})
set(CPACK_GENERATOR DEB)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL runtime development python)
if(ORX_BUILD_TOOLS)
  list(APPEND CPACK_COMPONENTS_ALL tools)
endif()
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
# Packaging revision 1 of the upstream version: the packages are not Debian-native.
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(orx_debian_version ${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE})
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_HOMEPAGE "https://ravo.example.org/orx")

set(orx_runtime_package libravo-orx${ORX_ABI_VERSION})
set(orx_exact_runtime "${orx_runtime_package} (= ${orx_debian_version})")

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME ${orx_runtime_package})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_COMPONENT_RUNTIME_DESCRIPTION "Ravo ORX decisions runtime (shared library)
 Takes digest-bound policy decisions (remote-command authorization, playback
 sync correction, cinema upscaling admission) with WebAssembly policy modules
 whose provenance matches digests fixed into the build, compiled to native
 code. Also canonical JSON and domain-tagged SHA-256 digests. Exposes a C API
 and a C++ API. This package holds the library and its policy artifacts.")
# The library's shlibs file (CPack writes one for every package with a shared library: only this one),
# and the ldconfig trigger Debian expects of such a package.
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
file(WRITE ${PROJECT_BINARY_DIR}/package/debian-runtime/triggers "activate-noawait ldconfig\n")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA ${PROJECT_BINARY_DIR}/package/debian-runtime/triggers)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_STRICT_PERMISSION ON)

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libravo-orx-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS
  "${orx_exact_runtime}, nlohmann-json3-dev (>= 3), libfmt-dev, libicu-dev, uuid-dev, pkgconf | pkg-config")
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION "Ravo ORX decision core (development files)
 Headers of the C API <ravo-orx/orx.h> and of the C++ libraries, static
 archives of every library (canonical core, host contract, decisions runtime,
 application contracts, host adapters), the CMake package RavoORX and the
 pkg-config modules ravo-orx (shared) and ravo-orx-static.")

set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME ravo-orx-tools)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_TOOLS_PACKAGE_DEPENDS "${orx_exact_runtime}")
set(CPACK_COMPONENT_TOOLS_DESCRIPTION "Ravo ORX decision core (command-line tools)
 ravo-orx takes decisions, canonicalizes JSON, computes digests, checks
 evidence and builds and tests policy modules; RavoORXChecks proves that the
 runtime loads its digest-bound modules and decides as expected.")

set(CPACK_DEBIAN_PYTHON_PACKAGE_NAME python3-ravo-orx)
set(CPACK_DEBIAN_PYTHON_PACKAGE_SECTION python)
set(CPACK_DEBIAN_PYTHON_PACKAGE_ARCHITECTURE all)
set(CPACK_DEBIAN_PYTHON_PACKAGE_DEPENDS "${orx_exact_runtime}, python3")
set(CPACK_COMPONENT_PYTHON_DESCRIPTION "Ravo ORX decision core (Python binding)
 The ravo_orx module: the decisions runtime, canonical JSON, domain digests
 and the decision-evidence reader from Python, through ctypes over the shared
 library.")

# /usr/share/doc/<package>/copyright and changelog.Debian.gz, written once here for every package.
if(ORX_INSTALL)
  configure_file(${CMAKE_CURRENT_LIST_DIR}/package/debian-copyright.in ${PROJECT_BINARY_DIR}/package/debian/copyright @ONLY)
  configure_file(${CMAKE_CURRENT_LIST_DIR}/package/debian-changelog.in ${PROJECT_BINARY_DIR}/package/debian/changelog.Debian @ONLY)
  execute_process(COMMAND gzip -9nf ${PROJECT_BINARY_DIR}/package/debian/changelog.Debian COMMAND_ERROR_IS_FATAL ANY)
  foreach(component ${CPACK_COMPONENTS_ALL})
    string(TOUPPER ${component} upper)
    install(FILES ${PROJECT_BINARY_DIR}/package/debian/copyright ${PROJECT_BINARY_DIR}/package/debian/changelog.Debian.gz
      DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${CPACK_DEBIAN_${upper}_PACKAGE_NAME} COMPONENT ${component})
  endforeach()
endif()
include(CPack)
