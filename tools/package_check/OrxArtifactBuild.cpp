#include <ravo-orx/package_check/OrxArtifactBuild.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <iterator>
#include <stdexcept>

#include <ravo-orx/core/ORXSHA256.h>
#include <ravo-orx/runtime/OrxArtifactFiles.h>
#include <ravo-orx/package_check/OrxPackageCheck.h>
#include <ravo-orx/runtime/OrxDecisionKinds.h>
#include <ravo-orx/runtime/OrxEvidence.h>

namespace ravo::orx {

using namespace internal;

namespace {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;

std::string text(const std::vector<std::uint8_t>& bytes) { return {bytes.begin(), bytes.end()}; }

bool fileHasBytes(const fs::path& path, const std::string& bytes) {
  std::ifstream stream(path, std::ios::binary);
  return stream && std::string(std::istreambuf_iterator<char>(stream), {}) == bytes;
}

}  // namespace

OrxArtifactBuild buildOrxArtifacts(const OrxArtifactBuildPaths& paths, OrxPolicyCompilers& compilers) {
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
      for (const auto& failure : check.failures) build.failures.push_back(module + ": " + failure);
      build.modules.push_back({module, ORXSHA256::hex(wasm), ORXSHA256::hex(source), ORXSHA256::hex(manifest)});
      records.push_back(std::move(check.evidence));
      files.push_back({paths.artifacts / orxModuleFileName(module), text(wasm)});
      files.push_back({paths.artifacts / orxPackageCheckFileName(module), std::move(check.report)});
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
  files.push_back({paths.artifacts / kOrxEvidenceFile, evidence.dump(2) + "\n"});
  files.push_back({paths.constantsSource, orxBuildConstantsSource(toolchain, build.modules)});
  build.files = std::move(files);
  return build;
}

std::vector<OrxBuiltFile> changedFiles(const std::vector<OrxBuiltFile>& files) {
  std::vector<OrxBuiltFile> changed;
  std::copy_if(files.begin(), files.end(), std::back_inserter(changed),
               [](const OrxBuiltFile& file) { return !fileHasBytes(file.path, file.bytes); });
  return changed;
}

std::vector<fs::path> writeChangedFiles(const std::vector<OrxBuiltFile>& files) {
  std::vector<fs::path> written;
  for (const auto& [path, bytes] : changedFiles(files)) {
    const fs::path temporary = path.string() + ".partial";
    std::error_code error;
    fs::create_directories(path.parent_path().empty() ? "." : path.parent_path(), error);
    std::ofstream stream(temporary, std::ios::binary | std::ios::trunc);
    stream << bytes;
    stream.close();
    if (!stream || (fs::rename(temporary, path, error), error)) {
      const std::string reason = error ? error.message() : std::strerror(errno);
      fs::remove(temporary, error);
      throw std::runtime_error("could not write " + path.string() + ": " + reason);
    }
    written.push_back(path);
  }
  return written;
}

}  // namespace ravo::orx
