#include "runtime/OrxEvidence.h"

#include <set>

#include "contracts/support/RavoJSON.h"
#include "core/ORXSHA256.h"
#include "runtime/OrxArtifactFiles.h"
#include "runtime/OrxBuildConstants.h"
#include "runtime/RuntimeError.h"

namespace {

constexpr std::string_view kGeneratedBy = "tools/build_orx.sh";
constexpr std::string_view kProfile = "mock-output-v011";
constexpr std::string_view kOrxAbi = "0.10";
constexpr std::string_view kHostAbi = "0.11";
constexpr std::string_view kPassing = "pass";

bool matchesTable(const OrxBuildConstants::DigestTable& table, std::string_view name, const std::string& digest) {
  auto entry = table.find(name);
  return entry != table.end() && entry->second == digest;
}

}  // namespace

template <>
struct RavoJSONCodec<OrxModuleEvidence> {
  static OrxModuleEvidence decode(const RavoJSON& json, std::string_view context) {
    RavoJSONObjectReader reader(json, context);
    auto text = [&](const char* key) { return reader.required<std::string>(key); };
    return {text("module"),       text("orxAbi"),
            text("hostAbi"),      text("compilerIdentity"),
            text("sourceSha256"), text("packageManifestSha256"),
            text("wasmSha256"),   text("packageCheckSha256"),
            text("packageCheckStatus")};
  }
};

OrxEvidence OrxEvidence::decode(std::span<const std::uint8_t> json) {
  try {
    const RavoJSON document =
        parseRavoJSON(std::string_view(reinterpret_cast<const char*>(json.data()), json.size()));
    RavoJSONObjectReader reader(document, "evidence");
    return {reader.required<std::string>("generatedBy"), reader.required<std::string>("profile"),
            reader.required<std::string>("compilerIdentity"), reader.required<std::string>("toolchainBundleSha256"),
            reader.required<std::vector<OrxModuleEvidence>>("modules")};
  } catch (const RavoJSONDecodingError& error) {
    throw RuntimeError(error.what());
  }
}

void verifyBuildProvenance(const OrxEvidence& evidence) {
  if (evidence.generatedBy != kGeneratedBy || evidence.profile != kProfile ||
      evidence.compilerIdentity != OrxBuildConstants::compilerIdentity() ||
      evidence.toolchainBundleSha256 != OrxBuildConstants::toolchainBundleSha256()) {
    throw RuntimeError("ORX build provenance is not approved by this Ravo build");
  }
  std::set<std::string_view> names;
  for (const auto& record : evidence.modules) names.insert(record.module);
  if (names.size() != evidence.modules.size()) throw RuntimeError("ORX evidence contains duplicate module records");
}

OrxVerifiedModuleBytes verifyModuleArtifacts(std::string_view name, const std::filesystem::path& directory,
                                             const OrxEvidence& evidence) {
  const OrxModuleEvidence* record = nullptr;
  size_t matches = 0;
  for (const auto& candidate : evidence.modules) {
    if (candidate.module == name) {
      record = &candidate;
      ++matches;
    }
  }
  const std::string moduleName(name);
  if (matches != 1 || record->packageCheckStatus != kPassing) {
    throw RuntimeError("Missing passing package-check evidence for " + moduleName);
  }
  if (record->orxAbi != kOrxAbi || record->hostAbi != kHostAbi ||
      record->compilerIdentity != OrxBuildConstants::compilerIdentity() ||
      !matchesTable(OrxBuildConstants::expectedSourceDigests(), name, record->sourceSha256) ||
      !matchesTable(OrxBuildConstants::expectedManifestDigests(), name, record->packageManifestSha256)) {
    throw RuntimeError("ORX source/package/compiler identity mismatch for " + moduleName);
  }
  if (!matchesTable(OrxBuildConstants::expectedDigests(), name, record->wasmSha256)) {
    throw RuntimeError("ORX evidence is not approved by this Ravo build");
  }
  if (ORXSHA256::hex(readArtifactFile(directory / (moduleName + ".package-check.json"))) != record->packageCheckSha256) {
    throw RuntimeError("ORX package-check digest mismatch for " + moduleName);
  }
  OrxVerifiedModuleBytes module{readArtifactFile(directory / (moduleName + ".wasm")), {}};
  module.digest = ORXSHA256::hex(module.bytes);
  if (!matchesTable(OrxBuildConstants::expectedDigests(), name, module.digest)) {
    throw RuntimeError("ORX artifact digest mismatch for " + moduleName);
  }
  return module;
}
