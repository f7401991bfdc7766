#pragma once
// The provenance this host build was reviewed against. tools/build_orx.sh prints these values after
// building the artifacts; changing a policy means rebuilding and updating OrxBuildConstants.cpp in the
// same commit. Built once, on first use, never changed.

#include <map>
#include <string>

struct OrxBuildConstants {
  using DigestTable = std::map<std::string, std::string, std::less<>>;  // module name -> 64 lowercase hex

  static const std::string& compilerIdentity();
  static const std::string& toolchainBundleSha256();
  static const DigestTable& expectedDigests();          // the .wasm files
  static const DigestTable& expectedSourceDigests();    // the policy sources
  static const DigestTable& expectedManifestDigests();  // the package manifests
};
