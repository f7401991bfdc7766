#pragma once
// The two build constants that name the toolchain behind the artifacts, both reproducible by anyone
// with the same assembler and the same source tree (tools/README.md gives a shell recipe for each):
//
// - compiler identity: "ORX <assembler version> commit <first 40 hex digits of the SHA-256 of the
//   assembler executable>";
// - toolchain-bundle digest: SHA-256 of a sha256sum listing, one "<hex>  <name>\n" line each, of the
//   assembler (named "wat2wasm") and then of every file in tools/package_check/ (named by its path from
//   the repository root), in byte order of their names: the code that judges the modules and writes
//   the artifacts.

#include <filesystem>
#include <string>

#include <ravo-orx/package_check/OrxWatAssembler.h>

namespace ravo::orx {

struct OrxToolchainIdentity {
  std::string compilerIdentity;
  std::string toolchainBundleSha256;

  // Throws when a file cannot be read.
  static OrxToolchainIdentity of(const OrxWatAssembler& assembler, const std::filesystem::path& repositoryRoot);
};

}  // namespace ravo::orx
