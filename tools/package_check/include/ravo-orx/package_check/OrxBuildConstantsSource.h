#pragma once
// The text of the build constants source: the provenance a host build approves, generated from the
// artifacts `ravo-orx policy build` has just checked and written beside them, so that the next build of
// the project approves exactly those.

#include <string>
#include <string_view>
#include <vector>

#include <ravo-orx/package_check/OrxToolchainIdentity.h>

namespace ravo::orx {

// Its name in the artifacts directory, from which the project compiles it.
inline constexpr std::string_view kOrxBuildConstantsFile = "OrxBuildConstants.cpp";

struct OrxModuleDigests {
  std::string module;
  std::string wasm;      // 64 lowercase hex each
  std::string source;
  std::string manifest;
};

std::string orxBuildConstantsSource(const OrxToolchainIdentity& toolchain, const std::vector<OrxModuleDigests>& modules);

}  // namespace ravo::orx
