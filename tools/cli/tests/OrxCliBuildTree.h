#pragma once
// Test support: a scratch repository in which `ravo-orx policy build` runs as it does at the root.

#include "tools/cli/tests/OrxCliToolRunner.h"

namespace ravo::orx {

namespace orx_cli_test {

inline const fs::path kConstantsHeader = "runtime/constants/include/ravo-orx/runtime/OrxBuildConstants.h";

// The build runs in a scratch tree holding what it reads: the policies, the package check's sources
// (part of the toolchain digest) and the constants header that marks the repository root.
struct BuildTree {
  BuildTree() : scratch("ravo-orx-build-") {
    fs::copy(kRoot / "policies", root / "policies");
    fs::create_directories(root / "tools");
    fs::copy(kRoot / "tools/package_check", root / "tools/package_check", fs::copy_options::recursive);
    fs::create_directories(root / kConstantsHeader.parent_path());
    fs::copy(kRoot / kConstantsHeader, root / kConstantsHeader);
  }
  Outcome build() const { return run({"policy", "build"}, "", root); }
  Scratch scratch;
  fs::path root = scratch.path;
};

}  // namespace orx_cli_test

}  // namespace ravo::orx
