#pragma once
// The artifact build: compiles the three policy modules from their sources of record, runs the package
// check on each, and prepares the artifacts ("<module>.wasm", "<module>.package-check.json", "evidence.json")
// and the build constants source that approves them. Nothing is written unless every module passed,
// and then only the files whose bytes changed, each through a temporary file renamed over it, so a
// rebuild of unchanged policies touches nothing.

#include <filesystem>
#include <string>
#include <vector>

#include <ravo-orx/package_check/OrxBuildConstantsSource.h>
#include <ravo-orx/package_check/OrxPolicyCompilers.h>
#include <ravo-orx/package_check/OrxToolchainIdentity.h>

namespace ravo::orx {

struct OrxBuiltFile {
  std::filesystem::path path;
  std::string bytes;
};

struct OrxArtifactBuild {
  std::vector<OrxModuleDigests> modules;  // in load order: player_authz, sync_correction, cinema_admission
  std::vector<std::string> failures;      // "<module>: <what failed>"
  std::vector<OrxBuiltFile> files;        // what the build would write; empty when anything failed
  OrxToolchainIdentity toolchain;         // once every module compiled
};

struct OrxArtifactBuildPaths {
  std::filesystem::path policies;        // "<module>.wat|.c|.rs" and "<module>.manifest.json"
  std::filesystem::path artifacts;
  std::filesystem::path constantsSource;  // runtime/OrxBuildConstants.cpp
  std::filesystem::path repositoryRoot;   // for the toolchain digest's tools/package_check/
};

OrxArtifactBuild buildOrxArtifacts(const OrxArtifactBuildPaths& paths, OrxPolicyCompilers& compilers);

// The files whose bytes differ from those on disk (or that do not exist yet).
std::vector<OrxBuiltFile> changedFiles(const std::vector<OrxBuiltFile>& files);

// Writes every file whose bytes differ from those on disk; returns the paths written. Throws
// std::runtime_error naming the file that could not be written.
std::vector<std::filesystem::path> writeChangedFiles(const std::vector<OrxBuiltFile>& files);

}  // namespace ravo::orx
