#pragma once
// The text of runtime/OrxBuildConstants.cpp: the provenance a host build approves, generated from the
// artifacts `ravo-orx policy build` has just checked, so that the next build of the project approves
// exactly those.

#include <string>
#include <vector>

#include <ravo-orx/package_check/OrxToolchainIdentity.h>

namespace ravo::orx {

struct OrxModuleDigests {
  std::string module;
  std::string wasm;      // 64 lowercase hex each
  std::string source;
  std::string manifest;
};

std::string orxBuildConstantsSource(const OrxToolchainIdentity& toolchain, const std::vector<OrxModuleDigests>& modules);

}  // namespace ravo::orx
