# `cpack -G DEB` in a build tree packages everything `cmake --install` installs, under the prefix the
# tree was configured with (configure with -DCMAKE_INSTALL_PREFIX=/usr for a system package), so the
# artifact search compiled into the library agrees with where the package puts the artifacts.
set(CPACK_PACKAGE_NAME ravo-orx)
set(CPACK_PACKAGE_VENDOR Ravo)
set(CPACK_PACKAGE_CONTACT "Ravo ORX maintainers <orx@ravo.invalid>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY
  "Ravo ORX decision core: digest-bound policy decisions and the contracts around them")
set(CPACK_RESOURCE_FILE_LICENSE ${PROJECT_SOURCE_DIR}/LICENSE)
set(CPACK_PACKAGING_INSTALL_PREFIX ${CMAKE_INSTALL_PREFIX})
set(CPACK_GENERATOR DEB)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION libdevel)
# The tools' shared libraries are found by dpkg-shlibdeps; the static libraries' consumers also need
# the headers, CMake packages and pkg-config modules of everything the libraries link.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS
  "nlohmann-json3-dev (>= 3), libfmt-dev, libicu-dev, uuid-dev, wabt, pkgconf | pkg-config")
include(CPack)
