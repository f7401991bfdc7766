#include <ravo-orx/package_check/OrxArtifactBuild.h>

#include <stdexcept>

#include <ravo-orx/core/ORXSHA256.h>
#include <ravo-orx/runtime/OrxArtifactFiles.h>
#include <ravo-orx/package_check/OrxPackageCheck.h>
#include <ravo-orx/runtime/OrxDecisionKinds.h>
#include <ravo-orx/runtime/OrxEvidence.h>

namespace ravo::orx {

using namespace internal;

namespace {

using Json = nlohmann::ordered_json;

std::string text(const std::vector<std::uint8_t>& bytes) { return {bytes.begin(), bytes.end()}; }

}  // namespace

OrxArtifactBuild buildOrxArtifacts(const OrxArtifactBuildPaths& paths, OrxPolicyCompilers& compilers,
                                   const OrxModuleApproval& approval) {
  struct Compiled {
    std::string module;
    std::vector<std::uint8_t> source, manifest, wasm;
  };
  OrxArtifactBuild build;
  std::vector<Compiled> compiled;
  for (const auto& kind : kOrxDecisionKinds) {
    const std::string module(kind.module);
    try {
      const auto source = findOrxPolicySource(paths.policies, module);
      if (!source) throw std::runtime_error("no source in " + paths.policies.string() + " (" + module + ".wat, .c or .rs)");
      compiled.push_back({module, readArtifactFile(source->path),
                          readArtifactFile(paths.policies / (module + ".manifest.json")), compilers.compile(*source)});
    } catch (const std::exception& error) {
      build.failures.push_back(module + ": " + error.what());
    }
  }
  if (!build.failures.empty()) return build;

  // The identity names the compilers every module was compiled with, so it is known only now.
  build.toolchain = OrxToolchainIdentity::of(compilers, paths.repositoryRoot);
  std::vector<OrxBuiltFile> files;
  Json records = Json::array();
  for (auto& [module, source, manifest, wasm] : compiled) {
    try {
      auto check = checkPolicyPackage(module, source, manifest, wasm, build.toolchain.compilerIdentity);
      if (check.failures.empty() && approval) check.failures = approval(*check.manifest, wasm);
      for (const auto& failure : check.failures) build.failures.push_back(module + ": " + failure);
      build.modules.push_back({module, ORXSHA256::hex(wasm), ORXSHA256::hex(source), ORXSHA256::hex(manifest)});
      records.push_back(std::move(check.evidence));
      files.push_back({orxModuleFileName(module), text(wasm)});
      files.push_back({orxPackageCheckFileName(module), std::move(check.report)});
    } catch (const std::exception& error) {
      build.failures.push_back(module + ": " + error.what());
    }
  }
  if (!build.failures.empty()) return build;

  const auto& toolchain = build.toolchain;
  const Json evidence = {{"generatedBy", kOrxEvidenceGeneratedBy},
                         {"profile", kOrxEvidenceProfile},
                         {"compilerIdentity", toolchain.compilerIdentity},
                         {"toolchainBundleSha256", toolchain.toolchainBundleSha256},
                         {"modules", records}};
  files.push_back({std::string(kOrxEvidenceFile), evidence.dump(2) + "\n"});
  files.push_back({std::string(kOrxBuildConstantsFile), orxBuildConstantsSource(toolchain, build.modules)});
  build.files = std::move(files);
  return build;
}

}  // namespace ravo::orx
