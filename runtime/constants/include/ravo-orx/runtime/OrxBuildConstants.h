#pragma once
// The provenance this host build was reviewed against. `ravo-orx policy build` generates
// artifacts/OrxBuildConstants.cpp together with the artifacts it approves, in the same directory; both
// are committed together. Built once, on first use, never changed.

#include <map>
#include <string>

namespace ravo::orx::internal {

struct OrxBuildConstants {
  using DigestTable = std::map<std::string, std::string, std::less<>>;  // module name -> 64 lowercase hex

  static const std::string& compilerIdentity();
  static const std::string& toolchainBundleSha256();
  static const DigestTable& expectedDigests();          // the .wasm files
  static const DigestTable& expectedSourceDigests();    // the policy sources
  static const DigestTable& expectedManifestDigests();  // the package manifests
};

}  // namespace ravo::orx::internal
