#pragma once
// The artifact build: assembles the three policy modules from their sources, runs the package check on
// each, and prepares the artifacts ("<module>.wasm", "<module>.package-check.json", "evidence.json")
// and the build constants source that approves them. Nothing is written unless every module passed,
// and then only the files whose bytes changed, each through a temporary file renamed over it, so a
// rebuild of unchanged policies touches nothing.

#include <filesystem>
#include <string>
#include <vector>

#include <ravo-orx/package_check/OrxBuildConstantsSource.h>
#include <ravo-orx/package_check/OrxWatAssembler.h>

namespace ravo::orx {

struct OrxBuiltFile {
  std::filesystem::path path;
  std::string bytes;
};

struct OrxArtifactBuild {
  std::vector<OrxModuleDigests> modules;  // in load order: player_authz, sync_correction, cinema_admission
  std::vector<std::string> failures;      // "<module>: <what failed>"
  std::vector<OrxBuiltFile> files;        // what the build would write; empty when anything failed
};

struct OrxArtifactBuildPaths {
  std::filesystem::path policies;        // "<module>.wat" and "<module>.manifest.json"
  std::filesystem::path artifacts;
  std::filesystem::path constantsSource;  // runtime/OrxBuildConstants.cpp
};

OrxArtifactBuild buildOrxArtifacts(const OrxArtifactBuildPaths& paths, const OrxWatAssembler& assembler,
                                   const OrxToolchainIdentity& toolchain);

// Writes every file whose bytes differ from those on disk; returns the paths written. Throws
// std::runtime_error naming the file that could not be written.
std::vector<std::filesystem::path> writeChangedFiles(const std::vector<OrxBuiltFile>& files);

}  // namespace ravo::orx
