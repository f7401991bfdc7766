#pragma once
// The two build constants that name the toolchain behind the artifacts, both reproducible by anyone
// with the same compilers and the same source tree (tools/README.md gives a shell recipe for each):
//
// - compiler identity: "ORX <wat2wasm's version> commit <first 40 hex digits of the SHA-256 of the
//   compiler listing>", where the compiler listing is a sha256sum listing, one "<hex>  <name>\n" line
//   each in byte order of the names, of the files of every compiler that produced an approved module
//   (OrxPolicyCompilers::filesUsed): the exact compilers the build constants bind;
// - toolchain-bundle digest: SHA-256 of a sha256sum listing of the assembler (named "wat2wasm") and
//   then of every file in tools/package_check/ (named by its path from the repository root), in byte
//   order of their names: the code that judges the modules and writes the artifacts.

#include <filesystem>
#include <string>

#include <ravo-orx/package_check/OrxPolicyCompilers.h>

namespace ravo::orx {

struct OrxToolchainIdentity {
  std::string compilerIdentity;
  std::string toolchainBundleSha256;

  // Of the compilers as used so far. Throws when a file cannot be read.
  static OrxToolchainIdentity of(const OrxPolicyCompilers& compilers, const std::filesystem::path& repositoryRoot);
};

}  // namespace ravo::orx
