# The libraries as a package: RavoORX:: aliases for add_subdirectory users, and (ORX_INSTALL) install
# rules for the libraries, their headers, the tools and the bundled artifacts, the CMake package
# RavoORX (find_package(RavoORX CONFIG)), the pkg-config module ravo-orx and a Debian package (CPack).

# The modules applications link, and the runtime's static parts that OrxRuntime links privately (a
# static library's private dependencies are still linked by its consumers, so they are installed too).
set(ORX_PUBLIC_LIBRARIES OrxCore OrxHostContract RavoSupport RavoDefinitions RavoActions RavoScenarios
  RavoServices RavoAIContracts OrxRuntime OrxCApi RavoORXAdapters RavoORX)
set(ORX_INTERNAL_LIBRARIES OrxPrecompiledModules OrxBuildConstants)
if(NOT ORX_PRECOMPILED)
  list(APPEND ORX_INTERNAL_LIBRARIES OrxWasmEngine)  # an interpreter-only runtime runs approved modules on it
endif()
set(orx_aliased_libraries ${ORX_PUBLIC_LIBRARIES})
if(TARGET OrxSharedRuntime)
  list(APPEND orx_aliased_libraries OrxSharedRuntime)
endif()
foreach(library ${orx_aliased_libraries})
  # The alias is the name the package exports (the shared library's is RavoORX::ravo-orx).
  get_target_property(exported ${library} EXPORT_NAME)
  if(NOT exported)
    set(exported ${library})
  endif()
  add_library(RavoORX::${exported} ALIAS ${library})
  # Consumers compile the public headers as C++20 too.
  get_target_property(type ${library} TYPE)
  if(type STREQUAL "INTERFACE_LIBRARY")
    target_compile_features(${library} INTERFACE cxx_std_20)
  else()
    target_compile_features(${library} PUBLIC cxx_std_20)
  endif()
endforeach()

if(NOT ORX_INSTALL)
  return()
endif()
include(CMakePackageConfigHelpers)
set(orx_include_dir ${CMAKE_INSTALL_INCLUDEDIR}/ravo-orx)
set(orx_cmake_dir ${CMAKE_INSTALL_LIBDIR}/cmake/RavoORX)

# Every header is spelled <ravo-orx/...>, in the tree as in an application: only include/ (the parent
# of ravo-orx/) goes on the consumer's include path, so an application's own core/ or runtime/ folders
# can never stand in for ours. The engine's headers and the runtime's internal ones stay private.
# Components, one per Debian package (cmake/OrxDebianPackage.cmake): runtime (the shared library and
# the artifacts), development (headers, static archives, the library's link name, CMake and pkg-config
# files), tools, python.
install(TARGETS ${ORX_PUBLIC_LIBRARIES} ${ORX_INTERNAL_LIBRARIES} EXPORT RavoORXTargets
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development
  INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
if(TARGET OrxSharedRuntime)
  install(TARGETS OrxSharedRuntime EXPORT RavoORXTargets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT development
    INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
endif()
include(${CMAKE_CURRENT_LIST_DIR}/OrxInstalledHeaders.cmake)
orx_installed_headers(orx_headers)
foreach(header IN LISTS orx_headers)
  string(REGEX REPLACE ".*/include/" "" spelled ${header})
  get_filename_component(folder ${spelled} DIRECTORY)
  install(FILES ${PROJECT_SOURCE_DIR}/${header} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/${folder}
    COMPONENT development)
endforeach()
install(FILES ${PROJECT_BINARY_DIR}/generated/ravo-orx/runtime/OrxVersion.h DESTINATION ${orx_include_dir}/runtime
  COMPONENT development)
install(FILES ${PROJECT_SOURCE_DIR}/artifacts/evidence.json DESTINATION ${ORX_INSTALL_ARTIFACTS_DIR} COMPONENT runtime)
foreach(module player_authz sync_correction cinema_admission)
  install(FILES ${PROJECT_SOURCE_DIR}/artifacts/${module}.wasm ${PROJECT_SOURCE_DIR}/artifacts/${module}.package-check.json
    DESTINATION ${ORX_INSTALL_ARTIFACTS_DIR} COMPONENT runtime)
endforeach()
if(ORX_BUILD_TOOLS)
  install(TARGETS RavoORXChecks ravo-orx RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT tools)
endif()
install(FILES ${PROJECT_SOURCE_DIR}/LICENSE ${PROJECT_SOURCE_DIR}/README.md ${PROJECT_SOURCE_DIR}/CHANGELOG.md
  ${PROJECT_SOURCE_DIR}/docs/EMBEDDING.md
  DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT development)

install(EXPORT RavoORXTargets NAMESPACE RavoORX:: DESTINATION ${orx_cmake_dir} COMPONENT development)
configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/package/RavoORXConfig.cmake.in
  ${PROJECT_BINARY_DIR}/package/RavoORXConfig.cmake INSTALL_DESTINATION ${orx_cmake_dir}
  PATH_VARS ORX_INSTALL_ARTIFACTS_DIR)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/package/RavoORXConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/package/RavoORXConfig.cmake ${PROJECT_BINARY_DIR}/package/RavoORXConfigVersion.cmake
  DESTINATION ${orx_cmake_dir} COMPONENT development)

# pkg-config: paths relative to the .pc file, so an install moved with --prefix stays usable.
# ravo-orx is the shared library (C and C++), ravo-orx-static every library as static archives.
file(RELATIVE_PATH orx_prefix_from_pc ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
foreach(module ravo-orx ravo-orx-static)
  configure_file(${CMAKE_CURRENT_LIST_DIR}/package/${module}.pc.in ${PROJECT_BINARY_DIR}/package/${module}.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/package/${module}.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig
    COMPONENT development)
endforeach()

include(${CMAKE_CURRENT_LIST_DIR}/OrxDebianPackage.cmake)
