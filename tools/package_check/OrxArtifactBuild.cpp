#include <ravo-orx/package_check/OrxArtifactBuild.h>

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

std::optional<std::string> existingBytes(const fs::path& path) {
  std::ifstream stream(path, std::ios::binary);
  if (!stream) return std::nullopt;
  return std::string(std::istreambuf_iterator<char>(stream), {});
}

}  // namespace

OrxArtifactBuild buildOrxArtifacts(const OrxArtifactBuildPaths& paths, const OrxWatAssembler& assembler,
                                   const OrxToolchainIdentity& toolchain) {
  OrxArtifactBuild build;
  std::vector<OrxBuiltFile> files;
  Json records = Json::array();
  for (const auto& kind : kOrxDecisionKinds) {
    const std::string module(kind.module);
    try {
      const auto source = readArtifactFile(paths.policies / (module + ".wat"));
      const auto manifest = readArtifactFile(paths.policies / (module + ".manifest.json"));
      const auto wasm = assembler.assemble(paths.policies / (module + ".wat"));
      auto check = checkPolicyPackage(module, source, manifest, wasm, toolchain.compilerIdentity);
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

std::vector<fs::path> writeChangedFiles(const std::vector<OrxBuiltFile>& files) {
  std::vector<fs::path> written;
  for (const auto& [path, bytes] : files) {
    if (existingBytes(path) == bytes) continue;
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
