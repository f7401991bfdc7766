#pragma once
// "evidence.json": the provenance record the Orx build writes beside the modules, and the checks that
// bind it to this host build. Unknown keys are ignored; every listed key is required and is a string.

#include <cstdint>
#include <filesystem>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace ravo::orx::internal {

// The provenance the Orx build writes and the runtime requires: one definition for both.
inline constexpr std::string_view kOrxEvidenceFile = "evidence.json";
inline constexpr std::string_view kOrxEvidenceGeneratedBy = "tools/build_orx.sh";
inline constexpr std::string_view kOrxEvidenceProfile = "mock-output-v011";
inline constexpr std::string_view kOrxAbiLane = "0.10";
inline constexpr std::string_view kOrxHostAbiLane = "0.11";
inline constexpr std::string_view kOrxPackageCheckPassing = "pass";

// "<module>.wasm" and "<module>.package-check.json": each module's files beside the evidence.
std::string orxModuleFileName(std::string_view module);
std::string orxPackageCheckFileName(std::string_view module);

// Every file of an artifacts directory: the evidence, then each decision kind's module and report.
std::vector<std::string> orxArtifactFileNames();

struct OrxModuleEvidence {
  std::string module;
  std::string orxAbi;
  std::string hostAbi;
  std::string compilerIdentity;
  std::string sourceSha256;
  std::string packageManifestSha256;
  std::string wasmSha256;
  std::string packageCheckSha256;
  std::string packageCheckStatus;
};

struct OrxEvidence {
  std::string generatedBy;
  std::string profile;
  std::string compilerIdentity;
  std::string toolchainBundleSha256;
  std::vector<OrxModuleEvidence> modules;

  // Throws RuntimeError with the decoder's description when the text does not decode.
  static OrxEvidence decode(std::span<const std::uint8_t> json);
};

// Top-level provenance and duplicate records; throws RuntimeError, all or nothing.
void verifyBuildProvenance(const OrxEvidence& evidence);

struct OrxVerifiedModuleBytes {
  std::vector<std::uint8_t> bytes;
  std::string digest;  // SHA-256 of `bytes`, 64 lowercase hex
};

// The per-module checks, ending with the module's own bytes read once and hashed. Throws RuntimeError.
OrxVerifiedModuleBytes verifyModuleArtifacts(std::string_view name, const std::filesystem::path& directory,
                                             const OrxEvidence& evidence);

}  // namespace ravo::orx::internal
