#pragma once
// The artifact build: compiles the three policy modules from their sources of record, runs the package
// check on each, and prepares the artifact set ("<module>.wasm", "<module>.package-check.json",
// "evidence.json" and the build constants source that approves them). Nothing is written unless every
// module passed; then the set is replaced as a whole (OrxArtifactSetWriter.h).

#include <cstdint>
#include <filesystem>
#include <functional>
#include <span>
#include <string>
#include <vector>

#include <ravo-orx/package_check/OrxArtifactSetWriter.h>
#include <ravo-orx/package_check/OrxBuildConstantsSource.h>
#include <ravo-orx/package_check/OrxPolicyCompilers.h>
#include <ravo-orx/package_check/OrxPolicyManifest.h>
#include <ravo-orx/package_check/OrxToolchainIdentity.h>

namespace ravo::orx {

struct OrxArtifactBuild {
  std::vector<OrxModuleDigests> modules;  // in load order: player_authz, sync_correction, cinema_admission
  std::vector<std::string> failures;      // "<module>: <what failed>"
  std::vector<OrxBuiltFile> files;        // the artifact set; empty when anything failed
  OrxToolchainIdentity toolchain;         // once every module compiled
};

struct OrxArtifactBuildPaths {
  std::filesystem::path policies;        // "<module>.wat|.c|.rs" and "<module>.manifest.json"
  std::filesystem::path repositoryRoot;  // for the toolchain digest's tools/package_check/
};

// What keeps a module that passed its package check from being approved: given its manifest (as the
// check read it) and the module, the problems (none to approve it). The prover answers this from a
// layer above the package check, so the build takes it as a function.
using OrxModuleApproval =
    std::function<std::vector<std::string>(const OrxPolicyManifest& manifest, std::span<const std::uint8_t> wasm)>;

OrxArtifactBuild buildOrxArtifacts(const OrxArtifactBuildPaths& paths, OrxPolicyCompilers& compilers,
                                   const OrxModuleApproval& approval = {});

}  // namespace ravo::orx
